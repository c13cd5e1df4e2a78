// A field's value in a table: the lines of a cell, or a key to sort by.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_CELL_H
#define DISKSCOUT_TOOLS_DISKSCOUT_CELL_H

#include "field.h"

#include <string>
#include <vector>

// Numbers for people: sizes in units; or as they are.
enum class sizes_t { IN_UNITS, IN_BYTES };

// Printable lines; one but for TEXTS, which have one each. What is absent is "-".
std::vector<std::string> cell_of(const field_t &field, const void *record, sizes_t sizes);

// The value as one text that is not made printable, for programs; what is absent is empty.
std::string raw_cell_of(const field_t &field, const void *record);

// Whether the value of the first record stands before that of the second: numbers by their value, texts by their bytes
// but numbers in them by their value, what is absent behind all else.
bool is_before(const field_t &field, const void *first, const void *second);

#endif
