# SPDX-License-Identifier: Apache-2.0
# The tables of a manual page, as the converter made them, fitted to a terminal of 80 columns:
#
#   awk -f man-table.awk <page >fitted
#
# A column gets what its words need at least, and of the rest as much as its text asks for. A table that has no room
# so, or whose rows would be tall and thin, becomes a paragraph for each row.

BEGIN {
	LINE = 71 # what stands right of the indentation
	BETWEEN = 3
	TALLEST = 8
}

# As it is seen: without fonts, and each sign as the one character that it makes.
function seen(text) {
	gsub(/\\f[BIR]/, "", text)
	gsub(/\\&/, "", text)
	gsub(/\\\([a-z][a-z]/, "x", text)
	gsub(/\\./, "x", text)
	return length(text)
}

function longest_word(text,    words, count, i, longest) {
	count = split(text, words, " ")
	for (i = 1; i <= count; i++)
		if (seen(words[i]) > longest)
			longest = seen(words[i])
	return longest + 0
}

# Lines of a text that is broken at its blanks.
function lines_of(text, width,    words, count, i, size, used, lines) {
	count = split(text, words, " ")
	lines = count > 0
	for (i = 1; i <= count; i++) {
		size = seen(words[i])
		if (used > 0 && used + 1 + size > width) {
			lines++
			used = 0
		}
		used += size + (used > 0)
	}
	return lines
}

# Sets width[] of all columns and returns whether the table can be one.
function fits(    column, row, size, room, most, greedy) {
	room = LINE - BETWEEN * (columns - 1)
	for (column = 1; column <= columns; column++) {
		width[column] = widest[column] = wanted[column] = 0
		for (row = 0; row < rows; row++) {
			size = longest_word(cell[row, column])
			width[column] = size > width[column] ? size : width[column]
			size = seen(cell[row, column])
			widest[column] = size > widest[column] ? size : widest[column]
			wanted[column] += size
		}
		room -= width[column]
	}
	for (; room > 0; room--) {
		greedy = 0
		for (column = 1; column <= columns; column++)
			if (width[column] < widest[column] &&
			    (!greedy || wanted[column] / width[column] > wanted[greedy] / width[greedy]))
				greedy = column
		if (!greedy)
			return 1
		width[greedy]++
	}
	for (row = 0; row < rows; row++)
		for (column = 1; column <= columns; column++)
			if (lines_of(cell[row, column], width[column]) > TALLEST)
				return 0
	return room == 0
}

function print_format(font, end,    column) {
	for (column = 1; column <= columns; column++)
		printf "l%sw(%dn)%s", font, width[column], column < columns ? " " : end "\n"
}

function print_row(row,    column) {
	for (column = 1; column <= columns; column++)
		printf "T{\n%s\nT}%s", cell[row, column], column < columns ? "|" : "\n"
}

function print_table(    row) {
	print ".TS"
	print "tab(|) nokeep;"
	print_format("b", "")
	print_format("", ".")
	print_row(0)
	print "_"
	for (row = 1; row < rows; row++)
		print_row(row)
	print ".TE"
}

function print_paragraphs(    row, column, behind) {
	for (row = 1; row < rows; row++) {
		print ".TP"
		print cell[row, 1] == "" ? "\\&" : cell[row, 1]
		behind = 0
		for (column = 2; column <= columns; column++) {
			if (cell[row, column] == "")
				continue
			if (behind++)
				print ".br"
			if (cell[0, column] != "")
				print "\\fI" cell[0, column] ":\\fR"
			print cell[row, column]
		}
	}
}

/^\.TS$/ { inside = 1; rows = columns = column = 0; delete cell; next }
!inside { print; next }
/^\.TE$/ {
	inside = 0
	if (fits())
		print_table()
	else
		print_paragraphs()
	next
}
/^T\{$/ { text = ""; open = 1; column++; next }
/^T\}\|T\{$/ { cell[rows, column++] = text; text = ""; next }
/^T\}$/ { cell[rows++, column] = text; columns = column; column = 0; open = 0; next }
open { text = text (text == "" ? "" : " ") $0 }
