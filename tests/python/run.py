#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""run.py COMMAND... --build-dir BUILD: runs the command where captured hosts can be shown to it.

The interpreter loads the plug-ins, so what stands between them and the C library has to be loaded before it; so has
the sanitizer's runtime, which a library of that build takes from its program.
"""

import os
import pathlib
import subprocess
import sys
import tempfile

build = pathlib.Path(sys.argv[sys.argv.index("--build-dir") + 1]).resolve()
preloaded = [build / "diskscout-replay.so"]
if "DISKSCOUT_SANITIZE:BOOL=ON" in (build / "CMakeCache.txt").read_text(encoding="utf-8"):
    runtime = subprocess.run(["cc", "-print-file-name=libasan.so"], check=True, capture_output=True, text=True)
    preloaded.insert(0, pathlib.Path(runtime.stdout.strip()))

with tempfile.TemporaryDirectory() as place:
    links = []
    # The loader splits LD_PRELOAD at blanks and colons.
    for number, library in enumerate(preloaded):
        links.append(pathlib.Path(place) / f"{number}.so")
        links[-1].symlink_to(library)
    environment = {name: value for name, value in os.environ.items() if not name.startswith("REPLAY_")}
    # What the interpreter keeps until its end is no leak of ours: the tests count records themselves.
    environment.update(LD_PRELOAD=":".join(map(str, links)), LC_ALL="C.UTF-8",
                       ASAN_OPTIONS="detect_leaks=0:verify_asan_link_order=0")
    sys.exit(subprocess.run(sys.argv[1:], env=environment, check=False).returncode)
