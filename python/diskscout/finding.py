# SPDX-License-Identifier: Apache-2.0
"""Where the plug-ins are.

A program says it by a path or a directory. Without either the plug-ins are looked for where they are installed, seen
from this very file: in PREFIX/lib/python3/dist-packages/diskscout it looks for PREFIX/lib/TRIPLET/diskscout. So one
package serves every architecture and every prefix, and no environment variable can bring in a foreign library.
"""

from __future__ import annotations

import os
import sysconfig
from typing import List, Optional, Union

from .errors import LibraryError

CLASSIC = "diskscout.so"
BLOCK = "diskscout-block.so"

PathLike = Union[str, "os.PathLike[str]"]


def _prefix() -> Optional[str]:
    """What this package is installed below; none in a tree of sources."""
    place = os.path.dirname(os.path.realpath(__file__))
    while os.path.dirname(place) != place:
        place, folder = os.path.split(place)
        if folder in ("lib", "lib64"):
            return place
    return None


def installed_directories() -> List[str]:
    """Where installed plug-ins may be, the likeliest place first."""
    prefix = _prefix()
    if prefix is None:
        return []
    triplet = sysconfig.get_config_var("MULTIARCH")
    places = [os.path.join("lib", str(triplet))] if triplet else []
    return [os.path.join(prefix, place, "diskscout") for place in (*places, "lib", "lib64")]


def find(name: str, path: Optional[PathLike], directory: Optional[PathLike]) -> str:
    """The file of the plug-in of that name; a LibraryError when there is none."""
    if path is not None and directory is not None:
        raise ValueError("a plug-in has a path or a directory, not both")
    if path is not None:
        places = [os.path.abspath(path)]
    elif directory is not None:
        places = [os.path.join(os.path.abspath(directory), name)]
    else:
        places = [os.path.join(place, name) for place in installed_directories()]
    for place in places:
        if os.path.exists(place):
            return place
    if not places:
        raise LibraryError(f"{name}: this package is not installed: say in which directory the plug-ins are")
    raise LibraryError(f"{name} is not there: {', '.join(places)}")
