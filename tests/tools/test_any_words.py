# SPDX-License-Identifier: Apache-2.0
"""Command lines put together by chance, always the same ones: each ends, with one document or with sentences."""

import json
import random

import pytest
from documents import KINDS, errors_of

WORDS = [
    *KINDS,
    *("raid-disks", "raid-space", "list", "schema", "tapes", "devcies", "sda", "", "-", "--"),
    *("\x1b[31m", "größe", "a\nb"),
    *("/dev/null", "/nowhere", "/", ".", "./x"),
    *("--classic", "--bytes", "--no-headings", "--pairs", "--inverse", "--help", "--version", "-h", "--frobnicate"),
    *("--format=2", "--format=3", "--format=", "--json", "--columns=name", "--columns=+uuid", "--columns=,", "-oname"),
    *("--sort=name", "--sort=", "--controller=aac0", "--controller=aac7", "--config=raid.cfg", "--plugin=/nowhere"),
    *("--block-plugin=/nowhere", "--sysroot=/nowhere", "--sysroot="),
]


RUNS = 60


def by_chance(seed):
    source = random.Random(seed)
    words = [source.choice(WORDS) for _ in range(source.randrange(5))]
    if source.random() < 0.8:
        words.insert(0, "list")
    # Behind "--" it would be an operand.
    end = words.index("--") if "--" in words else len(words)
    words.insert(source.randrange(end + 1), "--json")
    return words


@pytest.mark.parametrize("block", ["plain", "hostile", "empty"])
def test_documents(tool, block):
    for seed in range(RUNS):
        words = by_chance(f"{block} {seed}")
        if "schema" in words:
            continue
        result = tool.made(*words, block=block, classic=block, cwd=tool.scratch)
        assert result.returncode in (0, 1, 2), words
        document = json.loads(result.stdout)
        assert all(len(error["text"]) > 5 for error in errors_of(document)), words


@pytest.mark.parametrize("block", ["plain", "hostile", "empty"])
def test_tables(tool, block):
    for seed in range(RUNS):
        words = [word for word in by_chance(f"{block} {seed}") if word != "--json"]
        result = tool.made(*words, block=block, classic=block, cwd=tool.scratch)
        assert result.returncode in (0, 1, 2), words
        assert (result.stderr == "") == (result.returncode == 0), words
        assert result.stdout == "" or result.returncode != 2, words
        text = (result.stdout + result.stderr).replace("\n", "")
        assert all(character.isprintable() for character in text), words
