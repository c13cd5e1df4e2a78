# SPDX-License-Identifier: Apache-2.0
def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, help="where the plug-in, block-json and the replay library stand")
