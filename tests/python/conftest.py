# SPDX-License-Identifier: Apache-2.0
"""The package on hosts that are shown to this very process: see run.py."""

import ctypes
import gc
import os
import pathlib
import subprocess
import sys

import pytest

SOURCES = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "python"))

import diskscout  # noqa: E402  what is tested is the tree's own
from diskscout.raid import OPERATIONS as raid_operations  # noqa: E402

THIS_PROCESS = ctypes.CDLL(None)
# Kept as it came for those who start an interpreter of their own; other children load nothing before themselves.
PRELOADED = os.environ.pop("LD_PRELOAD", "")

CONTROLLERS = """\
format version=1
controller name=aac0 type="EXAMPLE 2200S" availability=read/write clustering=No opens=yes channels=2 next_task=103
disk at=0:00:0 {disk}
disk at=0:01:0 {disk}
disk at=0:02:0 {disk}
disk at=0:03:0 {disk}
disk at=0:04:0 {disk}
disk at=0:05:0 {sick_disk}
disk at=0:06:0 type=Processor removable=no vendor=ACME product=ENCLOSURE revision=0.9 blocks=0 bytes_per_block=0 \
usage=Unowned shared=yes rate=0 primary_defects=0 grown_defects=0 bad_status=no
container number=0 type=Mirror size_kb=2097152 stripe_kb=0 usage=Open device=/dev/sda label=system parent=-1 data=yes
piece at=0:00:0 offset_kb=64 size_kb=2097152 rebuild=no
piece at=0:01:0 offset_kb=64 size_kb=2097152 rebuild=yes
spare at=0:04:0
task id=101 function=Rebuild done=450 step=0 container=0 state=RUN
task id=102 function=Scrub done=1000 step=0 container=7 state=SUS
controller name=aac1 type="EXAMPLE 2120S" availability="read only" clustering=Yes opens=yes channels=1 next_task=101
controller name=aac2 type="EXAMPLE 2120S" availability=read/write clustering=No opens=busy channels=1 next_task=101
controller name=aac3 type="EXAMPLE 2120S" availability=read/write clustering=No opens=wrong-type channels=1 \
next_task=101
"""
DISK = """\
type=Disk removable=no vendor="EXAMPLE A" product=EX10 revision=1.02 blocks=20971520 bytes_per_block=512 \
usage="{}" shared=no rate=320 primary_defects=3 grown_defects=1 bad_status={}"""


def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, type=pathlib.Path)


def pytest_configure(config):
    if not hasattr(THIS_PROCESS, "replay_use"):
        raise pytest.UsageError("captured hosts cannot be shown here: begin with tests/python/run.py")


@pytest.fixture(scope="session")
def build_dir(request):
    return request.config.getoption("--build-dir").resolve()


@pytest.fixture(scope="session")
def source_dir():
    return SOURCES


@pytest.fixture
def show():
    """Shows a captured host until the test ends."""

    def use(host):
        assert THIS_PROCESS.replay_use(os.fsencode(host)) == 0

    yield use
    assert THIS_PROCESS.replay_use(None) == 0


def ends_as_it_began(plugin):
    gc.collect()
    before = plugin.live_records
    yield plugin
    plugin.close()
    assert plugin.live_records == before


@pytest.fixture
def classic(build_dir):
    """The queries; whatever a test does, what it was given is back at its end."""
    yield from ends_as_it_began(diskscout.Plugin(directory=build_dir))


@pytest.fixture
def block(build_dir):
    yield from ends_as_it_began(diskscout.BlockPlugin(directory=build_dir))


@pytest.fixture(scope="session")
def raid_site(build_dir, tmp_path_factory):
    """A site with the simulated tool: one for all tests, because a process reads its configuration once."""
    site = tmp_path_factory.mktemp("site")
    # Names that become words of a shell command.
    (site / "raidsim").symlink_to(build_dir / "raidsim")
    (site / "filter").symlink_to(SOURCES / "tools/filter/diskscout-filter")
    (site / "raid.cfg").write_text("Cli Path:.\nCli Name:raidsim\nFilter Script:./filter\n")
    return site


@pytest.fixture
def at_the_site(raid_site, monkeypatch):
    """The working directory of an agent there, with controllers that can be worked out by hand."""
    monkeypatch.chdir(raid_site)
    monkeypatch.setenv("RAIDSIM_STATE", str(raid_site / "state.txt"))
    disk, sick_disk = DISK.format("Initialized", "no"), DISK.format("Not Initialized", "yes")
    (raid_site / "state.txt").write_text(CONTROLLERS.format(disk=disk, sick_disk=sick_disk))
    yield raid_site
    # Script, raw and filtered output are gone, whatever happened.
    assert {path.name for path in raid_site.iterdir()} == {"raidsim", "filter", "raid.cfg", "state.txt"}


@pytest.fixture
def raid(build_dir, at_the_site):
    with diskscout.Raid(directory=build_dir, configuration=at_the_site / "raid.cfg") as plugin:
        yield plugin


@pytest.fixture(scope="session")
def made_library(tmp_path_factory):
    """A plug-in of both kinds that answers what no host can be made to answer."""
    place = tmp_path_factory.mktemp("made")
    library = place / "made.so"
    answered = {"Aac_Get_Task_List", "Aac_Clear_Task_List", "Aac_Disk_Initialize"}
    (place / "stubs.h").write_text("".join(f"STUB({name})\n" for name in raid_operations if name not in answered))
    subprocess.run(["cc", "-std=gnu11", "-Wall", "-Wextra", "-Werror", "-shared", "-fPIC", "-g1",
                    f"-I{SOURCES}/src", f"-I{SOURCES}/block", f"-I{place}", str(SOURCES / "tests/python/made_plugin.c"), "-o",
                    str(library)], check=True)
    return library


@pytest.fixture
def preloaded():
    """What a program loads before itself to be shown a host."""
    return PRELOADED


@pytest.fixture
def interpreter(build_dir, tmp_path):
    """Another interpreter, of which a test sees how it ends; what it prints is at result.stdout and result.stderr."""

    def run(*words, host=None, **environment):
        settings = {**os.environ, "PYTHONPATH": str(SOURCES / "python"), "PYTHONDONTWRITEBYTECODE": "1", **environment}
        # A sanitizer's runtime has to be there for the plug-ins alone already.
        settings["LD_PRELOAD"] = PRELOADED
        if host is not None:
            settings["REPLAY_SYSROOT"] = str(host)
        return subprocess.run([sys.executable, "-X", "dev", *map(str, words)], env=settings, capture_output=True,
                              text=True, cwd=tmp_path, timeout=60, check=False)

    return run
