# SPDX-License-Identifier: Apache-2.0
"""What a library exports stands in one of its headers, and nothing else does.

An export whose definition has not seen its declaration is hidden and mangled: it is the headers that say C and
visible. So what is found here under a plain name has the declared type.
"""

import collections
import re
import subprocess

import pytest

Library = collections.namedtuple("Library", "file folder headers exports")
LIBRARIES = [
    Library("diskscout.so", "src", ("diskscout.h", "diskscout_raid.h"), 39),
    Library("diskscout-block.so", "block", ("diskscout_block.h",), 3),
]


@pytest.fixture(scope="module", params=LIBRARIES, ids=lambda library: library.file)
def library(request):
    return request.param


@pytest.fixture(scope="module")
def exports(build_dir, library):
    lines = subprocess.run(["nm", "-D", "--defined-only", str(build_dir / library.file)], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    return {line.split()[-1].split("@")[0] for line in lines}


def declarations(text):
    """The functions and variables of a header's visible part."""
    (visible,) = re.findall(r"^#pragma GCC visibility push\(default\)$(.*)^#pragma GCC visibility pop$", text,
                            re.MULTILINE | re.DOTALL)
    code = re.sub(r"/\*.*?\*/", "", visible, flags=re.DOTALL)
    return re.findall(r"(\w+)(?:\(|\[\d+\];|;)", code)


def test_every_export_is_declared(exports, library, source_dir, tmp_path):
    names = sorted(exports)
    assert len(names) == library.exports
    # Without a declaration a name is an error; __typeof__ takes functions and data alike.
    table = "".join(f"extern __typeof__({name}) *const at_{name};\n"
                    f"__typeof__({name}) *const at_{name} = &{name};\n" for name in names)
    program = tmp_path / "exports.c"
    program.write_text("".join(f'#include "{header}"\n' for header in library.headers) + table)
    done = subprocess.run(["cc", "-std=c99", "-pedantic-errors", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                           f"-I{source_dir}/src", f"-I{source_dir}/block", str(program)], check=False,
                          capture_output=True, text=True)
    assert done.stderr == ""
    assert done.returncode == 0


def test_every_declaration_is_exported_and_stands_once(exports, library, source_dir):
    declared = [name for header in library.headers
                for name in declarations((source_dir / library.folder / header).read_text(encoding="utf-8"))]
    assert sorted(declared) == sorted(exports)


def test_no_other_header_declares_an_export(exports, library, source_dir):
    again = [(str(header.relative_to(source_dir)), name)
             for header in (source_dir / library.folder).rglob("*.h") if header.name not in library.headers
             for name in re.findall(r"^[^/\n]*?\b(\w+)\(", header.read_text(encoding="utf-8"), re.MULTILINE)
             if name in exports]
    assert again == []


def test_no_source_writes_a_result_code_as_a_number(source_dir):
    codes = r"2|3|5|6|10|20|30|50|70|90|100|200|300"
    again = []
    for file in (source_dir / "src/hwraid").rglob("*.[ch]*"):
        code = re.sub(r'//[^\n]*|"(?:[^"\\]|\\.)*"', "", file.read_text(encoding="utf-8"))
        again += [(file.name, found) for found in re.findall(rf"(?:return|[,(:?=]) (-(?:{codes}))\b", code)]
    assert again == []
