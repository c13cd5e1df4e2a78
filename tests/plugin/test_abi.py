# SPDX-License-Identifier: Apache-2.0
"""docs/abi.md: how an agent asks whether a field is there."""

import subprocess

from sessions import blocks

PROGRAM = """
#include "diskscout_block.h"

{shown}
int main(void)
{{
	block_text text = {{0}};

	text.record_size = 16; /* of a release that had no text yet */
	return HAS_FIELD(&text, next) && !HAS_FIELD(&text, text) && (text.record_size = 24, HAS_FIELD(&text, text)) ? 0 : 1;
}}
"""


def test_a_field_is_there_when_it_lies_within_the_record(source_dir, tmp_path):
    (shown,) = blocks((source_dir / "docs/abi.md").read_text(encoding="utf-8"), "c")
    (tmp_path / "asks.c").write_text(PROGRAM.format(shown=shown))
    subprocess.run(["cc", "-std=c99", "-Wall", "-Wextra", "-Werror", f"-I{source_dir}/src", f"-I{source_dir}/block",
                    str(tmp_path / "asks.c"), "-o", str(tmp_path / "asks")], check=True)
    assert subprocess.run([str(tmp_path / "asks")], check=False).returncode == 0


def test_what_the_page_names_of_the_tree_is_there(source_dir):
    page = (source_dir / "docs/abi.md").read_text(encoding="utf-8")
    for path in ("src/diskscout.map", "block/diskscout-block.map", "src/layout.h", "block/layout.h", "abi", "scripts/abi"):
        assert path in page
        assert (source_dir / path).exists()
