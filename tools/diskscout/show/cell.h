// SPDX-License-Identifier: Apache-2.0
// A field's value in a table: the lines of a cell, a text for programs, a key to sort by.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_CELL_H
#define DISKSCOUT_TOOLS_DISKSCOUT_CELL_H

#include "field.h"

#include <string>
#include <vector>

// Numbers for people: sizes in units; or as they are.
enum class sizes_t { IN_UNITS, IN_BYTES };

// Printable lines, at least one; more only of TEXTS, which have one each. What is absent or empty is "-", a
// flag that is not set is an empty line. OBJECTS are named by the first value that each has: "sda1, sda2".
// The field's own cell goes before all that, but not in the place of an absent OBJECT, nor of BYTES that are
// asked for as they are.
std::vector<std::string> cell_of(const field_t &field, const row_t &row, sizes_t sizes);

// The value as one text for programs, which may hold any bytes: numbers and sizes in digits, flags "1" or
// "0", a comma between the values of a list; what is absent is empty. Objects are shown as in a table.
std::string raw_cell_of(const field_t &field, const row_t &row);

// Rows by this field, ascending: numbers by their value, texts by their bytes but numbers in them by their
// value, what is absent or empty behind all else. Equal ones keep their order.
void sort_by(const field_t &field, std::vector<row_t> &rows);

#endif
