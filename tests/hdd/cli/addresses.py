# SPDX-License-Identifier: Apache-2.0
"""Addresses in dumps differ from run to run; what they must be to each other does not.

    num=1, num_real=1, lmt=16, parent=00000000, this=<list>
    [*0 1  <list>*] ...                       the item belongs to the list dumped last
    this               = 0x<record>
    next               = 0x<following>        the address of the record printed next

An address that stands in no such relation is left as it was printed, so that it
never equals the text that is expected.
"""

import re

ADDRESS = "[0-9a-f]{8}"
LIST_HEAD = re.compile(rf"(?<=, this=)({ADDRESS})(?=\n)")
ITEM_HEAD = re.compile(rf"(?<=\*\d [ \d-]{{2}} )({ADDRESS})(?=\*\] )|(?<=\*\d\d [ \d-]{{2}} )({ADDRESS})(?=\*\] )")
RECORD = re.compile(rf"(?<=^this               = 0x)({ADDRESS})(?=\n)", re.MULTILINE)
NEXT = re.compile(rf"(?<=^next               = 0x)({ADDRESS})(?=\n)", re.MULTILINE)
NULL = "00000000"


def settle_lists(text):
    """A dump is a head line and the items below it, up to the next head."""
    pieces = LIST_HEAD.split(text)
    settled = pieces[0]
    for address, rest in zip(pieces[1::2], pieces[2::2]):
        if address == NULL:
            settled += address + rest
            continue
        settled += "<list>" + ITEM_HEAD.sub(
            lambda found, own=address: "<list>" if found.group(0) == own else found.group(0), rest
        )
    return settled


def settle_records(text):
    """Records follow each other in the order in which they are linked."""
    pieces = RECORD.split(text)
    settled = pieces[0]
    addresses = pieces[1::2] + [None]
    for number, rest in enumerate(pieces[2::2]):
        own, following = addresses[number], addresses[number + 1]
        settled += own if own == NULL else "<record>"
        settled += NEXT.sub(
            lambda found, after=following: "<following>" if found.group(0) == after else found.group(0), rest
        )
    return settled


def settle_addresses(text):
    return settle_records(settle_lists(text))
