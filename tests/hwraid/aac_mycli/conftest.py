# SPDX-License-Identifier: Apache-2.0
"""Runs the interactive RAID console as service staff do: keys in, transcript out, controllers behind it."""

import pathlib

import pytest
from console_site import Site

HERE = pathlib.Path(__file__).resolve().parent


def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, help="where stcli, diskscout.so and raidsim were built")


@pytest.fixture
def make_site(request, tmp_path):
    build_dir = pathlib.Path(request.config.getoption("--build-dir")).resolve()

    def make(name="site"):
        root = tmp_path / name
        root.mkdir()
        return Site(build_dir, root, (HERE / "controllers").read_text())

    return make


@pytest.fixture
def site(make_site):
    return make_site()
