# SPDX-License-Identifier: Apache-2.0
"""What doctor finds on sites that are sick in one way each, and on those that are well."""

import json
import re
import time

import pytest
from conftest import SLACK
from doctor_sites import NAMES, DoctorSite, one_for_each_check
from test_doctor import DOCTOR, findings, status_of
from unfold import unfold

# The text of what took too long tells the time that there was.
SECONDS = re.compile(r"after [0-9.]+ s")


def without_seconds(found):
    return [(verdict, check, SECONDS.sub("after N s", text)) for verdict, check, text in found]


@pytest.fixture
def well(tmp_path):
    """A host beside which nothing is found."""
    return unfold(DOCTOR / "well-sata", tmp_path / "host")


def examined(tool, site, host, *options, timeout="20"):
    arguments = ("--config", site.config, "--timeout", timeout, "--sysroot", host)
    result = tool.run("doctor", *options, "--json", *arguments, env=site.environment(), cwd=site.root)
    return result, json.loads(result.stdout)


def test_there_are_enough_of_both():
    assert len([name for name in NAMES if not name.startswith("fine")]) >= 60
    assert len([name for name in NAMES if name.startswith("fine")]) >= 15


@pytest.mark.usefixtures("meets_what_others_met")
@pytest.mark.parametrize("name", one_for_each_check())
def test_site(tool, well, tmp_path, name):
    site = DoctorSite(name, tmp_path / "site", tool.program.parent)
    expected = without_seconds(site.expected())
    hangs = any("timed out" in text for *_, text in expected)
    start = time.monotonic()
    result, document = examined(tool, site, well, "--raid", timeout="2" if hangs else "20")
    assert not hangs or time.monotonic() - start < 2 + SLACK
    assert without_seconds(findings(document)) == expected
    assert result.returncode == status_of(expected)
    assert site.nothing_is_left()


ADVICE = {
    "tool-is-directory": ("program_not_executable", "name the program itself"),
    "tool-not-executable": (
        "program_not_executable",
        "make the file executable with chmod; look whether its filesystem is mounted with noexec",
    ),
    "tool-status": ("tool_status", 'run the tool by hand with the commands "controller list" and "exit"'),
    "wrapper-times-out": (
        "tool_status",
        "look with ps what the tool waits for and who else uses the controller; diskscout-limit.cfg has the limits",
    ),
}


@pytest.mark.parametrize("name", ADVICE)
def test_advice_fits_what_is_found(tool, well, tmp_path, name):
    _, document = examined(tool, DoctorSite(name, tmp_path / "site", tool.program.parent), well, "--raid")
    advice = {row["check"]: row["advice"] for row in document["checks"] if row["verdict"] == "problem"}
    check, expected = ADVICE[name]
    assert advice == {check: expected}


def test_the_tool_is_not_run_unasked(tool, well, tmp_path):
    site = DoctorSite("fine", tmp_path / "site", tool.program.parent)
    (site.root / "bin" / "tool").write_text(f"#!/bin/sh\ntouch {site.root}/was-run\n")
    result, document = examined(tool, site, well)
    assert (result.returncode, findings(document)) == (0, [])
    assert not (site.root / "was-run").exists()
    unasked = [row for row in document["checks"] if row["verdict"] == "not asked"]
    assert "tool_hangs" in {row["check"] for row in unasked}
    assert {row["advice"] for row in unasked} == {"diskscout doctor --raid runs it"}


def test_the_tool_is_run_once_for_the_list(tool, well, tmp_path):
    site = DoctorSite("no-controller", tmp_path / "site", tool.program.parent)
    own = (site.root / "bin" / "tool").read_text()
    (site.root / "bin" / "tool").write_text(own.replace("#!/bin/sh\n", f"#!/bin/sh\necho >>{site.root}/runs\n"))
    examined(tool, site, well, "--raid")
    assert (site.root / "runs").read_text() == "\n"


def test_what_stands_behind_a_problem_is_not_asked(tool, well, tmp_path):
    site = DoctorSite("tool-missing", tmp_path / "site", tool.program.parent)
    arguments = ("doctor", "--raid", "--config", site.config, "--sysroot", well)
    result = tool.run(*arguments, env=site.environment(), cwd=site.root)
    assert (result.returncode, result.stderr) == (1, "")
    lines = result.stdout.splitlines()
    assert lines[:2] == [
        f"problem: the controller tool {site.root}/bin/tool cannot be run: No such file or directory.",
        "  install the program, or correct its path in the configuration.",
    ]
    assert re.fullmatch(r"\d+ checks, 1 problem; 22 not asked for what stands before\.", lines[-1])


def test_a_configuration_that_is_asked_for_must_be_there(tool, well):
    arguments = ("doctor", "--raid", "--sysroot", well)
    result = tool.run(*arguments)
    assert result.returncode == 1
    assert result.stdout.startswith(
        "problem: the configuration /root/hardraid.cfg cannot be read: No such file or directory"
        " (--config names another one).\n"
    )
    assert tool.run("doctor", "--sysroot", well).returncode == 0


# ---- what a list is told ----

# The list fails, and the cause is the one that doctor would lead with.
OF_A_LIST = {
    "controllers": [
        "config-missing",
        "config-directory",
        "config-small-letters",
        "config-no-filter",
        "name-is-path",
        "path-relative",
        "tool-missing",
        "tool-not-executable",
        "filter-without-interpreter",
        "run-directory-missing",
        "tool-status",
        "tool-killed",
        "filter-status",
        "filter-killed",
        "filter-prints",
    ],
    "containers": [
        "controller-held",
        "controller-of-wrong-type",
        "controller-gone",
        "simulated-busy",
        "simulated-flood",
    ],
}


@pytest.mark.parametrize("kind, name", [(kind, name) for kind, names in OF_A_LIST.items() for name in names])
def test_list_that_fails_tells_the_cause(tool, tmp_path, kind, name):
    site = DoctorSite(name, tmp_path / "site", tool.program.parent)
    arguments = ("--config", site.config, "--timeout", "20", "--json")
    result = tool.run("list", kind, *arguments, env=site.environment(), cwd=site.root)
    document = json.loads(result.stdout)
    verdict, _, text = site.expected()[0]
    leading = document["messages"][-1]
    assert (leading["severity"], leading["code"]) == ("error", f"{verdict}_found")
    assert leading["text"].startswith(f"{text}; ")
    assert result.stderr.splitlines()[-1] == f"diskscout: {leading['text']}"
    assert result.returncode == 1
    assert site.nothing_is_left()


def test_list_that_took_too_long_is_not_asked_again(tool, tmp_path):
    site = DoctorSite("tool-hangs", tmp_path / "site", tool.program.parent)
    start = time.monotonic()
    arguments = ("list", "controllers", "--config", site.config, "--timeout", "1")
    result = tool.run(*arguments, env=site.environment(), cwd=site.root)
    assert time.monotonic() - start < 4
    assert result.returncode == 1
    lines = result.stderr.splitlines()
    assert "timed out after 1 s at controller list" in lines[0]
    assert lines[-1] == (
        "diskscout: the controller tool or the filter timed out after 1 s at controller list;"
        " diskscout doctor --raid tells which, and --timeout allows more time"
    )
    assert site.nothing_is_left()
