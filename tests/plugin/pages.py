"""What the pages of docs/ hold: names in backticks and tables."""

import re


def names(cell):
    return re.findall(r"`([^`]+)`", cell)


def table(page, heading):
    """The rows of the table with that heading, cell by cell."""
    lines = iter(page[page.index(heading):].splitlines()[2:])
    rows = []
    for line in lines:
        if not line.startswith("|"):
            break
        rows.append([cell.strip() for cell in line.strip("|").split("|")])
    return rows
