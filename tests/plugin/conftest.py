# SPDX-License-Identifier: Apache-2.0
import pathlib

import pytest


def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, type=pathlib.Path)


@pytest.fixture(scope="session")
def build_dir(request):
    return request.config.getoption("--build-dir").resolve()


@pytest.fixture(scope="session")
def source_dir():
    return pathlib.Path(__file__).resolve().parents[2]
