# SPDX-License-Identifier: Apache-2.0
"""What is told of mounts that the running kernel really has, in a mount namespace of their own."""

import ctypes
import json
import os
import pathlib
import random
import subprocess
import sys
import time

import pytest

MS_BIND, MS_MOVE, MS_REC = 0x1000, 0x2000, 0x4000
MNT_DETACH = 2
LIBC = ctypes.CDLL(None, use_errno=True)


def mount(source, target, kind=None, flags=0, options=None):
    words = [word.encode() if word else None for word in (source, target, kind)]
    return LIBC.mount(*words, flags, options.encode() if options else None) == 0


def ask(build):
    done = subprocess.run([f"{build}/block-json", f"{build}/diskscout-block.so", "mounts"],
                          capture_output=True, timeout=20, check=True)
    return json.loads(done.stdout.decode("utf-8"))["mounts"]


# ---- what runs in the namespace ----


def mount_found_at(path):
    try:
        folder = os.open(path, os.O_PATH)
    except OSError:
        return None
    lines = pathlib.Path(f"/proc/self/fdinfo/{folder}").read_text(encoding="utf-8").splitlines()
    os.close(folder)
    return next(int(line.split()[1]) for line in lines if line.startswith("mnt_id:"))


def mount_at_random(top, dice):
    def anywhere(deepest):
        return "/".join([top] + [dice.choice(("a", "b", "ab")) for _ in range(dice.randint(0, deepest))])

    place, other, choice = anywhere(3), anywhere(2), dice.random()
    os.makedirs(place, exist_ok=True)
    if choice < 0.6:
        mount("none", place, "tmpfs")
    elif choice < 0.9:
        mount(other, place, flags=MS_BIND | dice.choice((0, MS_REC)))
    elif choice < 0.95:
        mount("none", "/", "tmpfs")
    else:
        mount(other, place, flags=MS_MOVE)


def compare_in_a_plain_folder(build, top):
    """What the running system has at its root, at the root of a folder that is no mount point."""
    mount("none", top, "tmpfs")
    os.makedirs(f"{top}/root")
    for name in os.listdir("/"):
        copy = f"{top}/root/{name}"
        if os.path.islink(f"/{name}"):
            os.symlink(os.readlink(f"/{name}"), copy)
        elif os.path.isdir(f"/{name}"):
            os.mkdir(copy)
            mount(f"/{name}", copy, flags=MS_BIND | MS_REC)
    os.chroot(f"{top}/root")
    os.chdir("/")
    os.mkdir("/random")
    compare_with_the_kernel(build, "/random")


def compare_with_the_kernel(build, top):
    mount("none", top, "tmpfs")
    dice = random.Random(1)
    shadowed = 0
    for _ in range(100):
        mount_at_random(top, dice)
    for told in ask(build):
        if told["kind"] != "mount" or "\\" in told["mount_point"]:
            continue
        found = mount_found_at(told["mount_point"]) == told["id"]
        assert found != told["shadowed"], told
        shadowed += told["shadowed"]
    assert shadowed > 10


def mount_what_never_answers(build, top):
    device = os.open("/dev/fuse", os.O_RDWR)
    if not mount("nobody", top, "fuse.nobody", options=f"fd={device},rootmode=40000,user_id=0,group_id=0"):
        sys.exit(f"no file system of FUSE here: {os.strerror(ctypes.get_errno())}")
    begin = time.monotonic()
    told = [one for one in ask(build) if one["mount_point"] == top]
    took = time.monotonic() - begin
    LIBC.umount2(top.encode(), MNT_DETACH)
    assert [one["total"] for one in told] == [None]
    assert took < 10


# ---- the tests ----


def in_namespace(work, request, tmp_path):
    unshare = ["unshare", "--mount"] + ([] if os.getuid() == 0 else ["--map-root-user"])
    if subprocess.run(unshare + ["true"], capture_output=True, check=False).returncode != 0:
        pytest.skip("no mount namespaces here")
    build = pathlib.Path(request.config.getoption("--build-dir")).resolve()
    done = subprocess.run(unshare + [sys.executable, __file__, work.__name__, str(build), str(tmp_path)],
                          capture_output=True, text=True, timeout=60, check=False)
    assert done.returncode == 0, done.stderr


@pytest.mark.parametrize("work", [compare_with_the_kernel, compare_in_a_plain_folder])
def test_what_is_shadowed_is_not_found_by_the_kernel(work, request, tmp_path):
    in_namespace(work, request, tmp_path)


def test_a_file_system_that_never_answers_holds_up_nobody(request, tmp_path):
    if not os.access("/dev/fuse", os.R_OK | os.W_OK):
        pytest.skip("no /dev/fuse here")
    in_namespace(mount_what_never_answers, request, tmp_path)


if __name__ == "__main__":
    globals()[sys.argv[1]](*sys.argv[2:])
