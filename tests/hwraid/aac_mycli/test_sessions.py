# SPDX-License-Identifier: Apache-2.0
"""Whole sessions, fed through a pipe, cut short at every prompt and within every answer, and typed at a terminal.

A session is a directory: "dialog" is what is printed and typed, "changes" is what the controllers' records have
lost (-) and won (+) afterwards.
"""

import pathlib

import pytest
from console_site import PAINTED, PLAIN
from dialog import Dialog
from screens import BYE, HELLO
from terminal import Terminal

SESSIONS = sorted((pathlib.Path(__file__).resolve().parent / "sessions").iterdir())
every_session = pytest.mark.parametrize("session", SESSIONS, ids=lambda path: path.name)


def dialog_of(session):
    return Dialog((session / "dialog").read_text(encoding="utf-8"))


def changes_of(session):
    return (session / "changes").read_text().splitlines()


@every_session
def test_through_a_pipe(site, session):
    dialog = dialog_of(session)
    assert site.run(dialog.keys(), PAINTED) == dialog.transcript()
    assert site.changes() == changes_of(session)
    assert site.times_cleared() == sum(answer.startswith("clear") for answer in dialog.answers)


def check_cut_short(make_site, session, count, rest):
    """After the first answers comes what is left of another one, and no more."""
    dialog = dialog_of(session)
    assert len(dialog.changing) == (1 if changes_of(session) else 0)
    site = make_site(f"after-{count}-{len(rest)}")
    site.make_quick()
    assert site.run(dialog.keys(count) + rest, PLAIN) == dialog.transcript_until(count) + BYE
    changed = bool(dialog.changing) and count >= dialog.changing[0]
    assert site.changes() == (changes_of(session) if changed else [])


@every_session
def test_end_of_input_at_every_prompt(make_site, session):
    for count in range(len(dialog_of(session).answers)):
        check_cut_short(make_site, session, count, "")


@every_session
def test_end_of_input_within_an_answer(make_site, session):
    """The 1 of a 10 that was cut short must not delete container 1."""
    for count, answer in enumerate(dialog_of(session).answers):
        for length in {1, len(answer)}:
            if answer:
                check_cut_short(make_site, session, count, answer[:length])


def steps_of(dialog):
    """Each prompt, with what stands above it, and its answer."""
    assert dialog.texts[0].startswith(HELLO)
    return list(zip([dialog.texts[0].removeprefix(HELLO), *dialog.texts[1:]], dialog.answers))


@every_session
def test_at_a_terminal(site, session):
    dialog = dialog_of(session)
    with Terminal(site) as terminal:
        for prompt, answer in steps_of(dialog):
            terminal.answers(prompt, answer)
        terminal.ends(dialog.end)
    assert site.changes() == changes_of(session)


@pytest.mark.parametrize("name", ["container-delete-with-data", "controllers", "raid1"])
def test_end_of_input_key_at_every_prompt(make_site, name):
    session = SESSIONS[0].with_name(name)
    dialog = dialog_of(session)
    steps = steps_of(dialog)
    for count, (prompt, _) in enumerate(steps):
        site = make_site(f"after-{count}")
        with Terminal(site) as terminal:
            for step in steps[:count]:
                terminal.answers(*step)
            terminal.waits(prompt)
            terminal.end_of_input()
            terminal.ends(BYE)
        changed = bool(dialog.changing) and count >= dialog.changing[0]
        assert site.changes() == (changes_of(session) if changed else [])
