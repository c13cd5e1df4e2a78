# SPDX-License-Identifier: Apache-2.0
"""Which plug-in is loaded, and what is said when it cannot be used."""

import shutil

from conftest import CLASSIC, complaint


def test_missing_plugin(tool, tmp_path):
    message = complaint(tool.run("list", *CLASSIC, "--plugin", tmp_path / "none.so"), 2)
    assert message.startswith("the plug-in cannot be loaded: ")
    assert str(tmp_path / "none.so") in message


def test_file_that_is_no_library(tool, tmp_path):
    text = tmp_path / "text.so"
    text.write_text("no library\n")
    message = complaint(tool.run("list", *CLASSIC, "--plugin", text), 2)
    assert message.startswith("the plug-in cannot be loaded: ")
    assert str(text) in message


def test_directory_is_no_plugin(tool, tmp_path):
    message = complaint(tool.run("list", *CLASSIC, "--plugin", tmp_path), 2)
    assert message.startswith("the plug-in cannot be loaded: ")


def test_library_that_lacks_a_function(tool):
    message = complaint(tool.run("list", *CLASSIC, "--plugin", tool.half_plugin), 2)
    assert message.startswith("the plug-in cannot be used: ")
    assert "SetItemInfo" in message


def test_relative_path_is_taken_from_the_working_directory(tool, tmp_path):
    # A bare name would be looked up in the loader's own directories.
    shutil.copy2(tool.fake_plugin, tmp_path / "bare.so")
    result = tool.run("list", *CLASSIC, "--plugin", "bare.so", cwd=tmp_path)
    assert (result.returncode, result.stderr) == (0, "")
    assert "FAST DISK" in result.stdout


def test_program_without_any_plugin_names_both_places(tool, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    message = complaint(tool.run("list", *CLASSIC, program=program), 2)
    assert str(tmp_path / "bin" / "diskscout.so") in message
    assert str(tmp_path / "lib" / "diskscout" / "diskscout.so") in message


def test_installed_plugin_is_found(tool, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    installed = tmp_path / "lib" / "diskscout"
    installed.mkdir(parents=True)
    shutil.copy2(tool.fake_plugin, installed / "diskscout.so")
    result = tool.run("list", *CLASSIC, program=program)
    assert (result.returncode, result.stderr) == (0, "")
    assert "FAST DISK" in result.stdout


def test_plugin_beside_the_program_goes_before_the_installed_one(tool, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    installed = tmp_path / "lib" / "diskscout"
    installed.mkdir(parents=True)
    shutil.copy2(tool.half_plugin, installed / "diskscout.so")
    shutil.copy2(tool.fake_plugin, tmp_path / "bin" / "diskscout.so")
    result = tool.run("list", *CLASSIC, program=program)
    assert (result.returncode, result.stderr) == (0, "")
    assert "FAST DISK" in result.stdout
