# SPDX-License-Identifier: Apache-2.0
"""The console on a terminal of its own, with somebody who waits for a prompt and then types."""

import pexpect
from console_site import PAINTED, processes_of
from screens import HELLO


class Terminal:
    """Everything that appears on the screen has to be asked for, in full and in order."""

    def __init__(self, site, fault=PAINTED):
        self.site = site
        program, *arguments = site.command()
        self.console = pexpect.spawn(
            program,
            arguments,
            cwd=str(site.work),
            env=site.environment(fault),
            encoding="ascii",
            timeout=20,
            dimensions=(24, 200),
        )
        # No waits for the sake of waiting: what is awaited is on the screen.
        self.console.delaybeforesend = None
        self.console.ptyproc.delayafterclose = 0
        site.check_entry(self.reads_until("\n"))
        self.sees(HELLO)

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        self.console.close(force=True)

    def sees(self, text):
        """What appears next; the terminal begins each new line at its start."""
        if text:
            self.console.expect_exact(text.replace("\n", "\r\n"))
            assert self.console.before == ""

    def reads_until(self, text):
        """Everything that appears before the text, which is awaited and read, too."""
        self.console.expect_exact(text.replace("\n", "\r\n"))
        return self.console.before.replace("\r\n", "\n")

    def waits(self, prompt):
        """The prompt, and behind it a console that has ended every child and left no file."""
        self.sees(prompt)
        assert processes_of(self.console.pid) == [self.console.pid]
        self.site.check_work()

    def types(self, text):
        """Key by key; each appears as it is pressed."""
        for key in text:
            self.console.send(key)
            self.sees(key)
        self.enter()

    def corrects(self, wrong, right):
        """Types, sees the mistake, erases it and types again."""
        for key in wrong:
            self.console.send(key)
            self.sees(key)
        self.takes_back("\x7f" * len(wrong), len(wrong))
        self.types(right)

    def takes_back(self, keys, count):
        """Keys that erase so many characters of the line."""
        self.console.send(keys)
        self.sees("\b \b" * count)

    def enter(self):
        self.console.send("\r")
        self.sees("\n")

    def answers(self, prompt, text):
        self.waits(prompt)
        self.types(text)

    def end_of_input(self):
        self.console.sendeof()

    def ends(self, text):
        self.sees(text)
        self.console.expect_exact(pexpect.EOF)
        assert self.console.before == ""
        self.console.wait()
        assert (self.console.exitstatus, self.console.signalstatus) == (0, None)
        assert processes_of(self.console.pid) == []
        self.site.check_work()
