# SPDX-License-Identifier: Apache-2.0
"""A recorded session: what the console prints and what is typed into it, in one text.

    Command>«1»
    Please select:...

What stands between « and » is typed and ended with Enter; everything else is printed, line ends included. The
answer that lets the controller change something stands between ‹ and › instead; there is one at most.
"""

import re

ANSWER = re.compile(r"[«‹]([^«»‹›]*)[»›]")


class Dialog:
    """The text before each answer, the answers, and the text after the last one."""

    def __init__(self, text):
        pieces = ANSWER.split(text)
        self.texts = pieces[0:-1:2]
        self.answers = pieces[1::2]
        self.end = pieces[-1]
        # How many answers have been given when the controller changes something.
        self.changing = [
            count + 1 for count, found in enumerate(ANSWER.finditer(text)) if found.group().startswith("‹")
        ]
        assert not re.search("[«»‹›]", "".join(self.texts) + self.end), "an answer's marks do not fit"

    def keys(self, count=None):
        """What is typed for the first answers, or for all of them."""
        return "".join(answer + "\n" for answer in self.answers[:count])

    def transcript(self):
        return "".join(self.texts) + self.end

    def transcript_until(self, count):
        """Everything up to the prompt that waits for the answer after the first ones."""
        return "".join(self.texts[: count + 1])
