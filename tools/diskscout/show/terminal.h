// SPDX-License-Identifier: Apache-2.0
// What the other end of standard output can show.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TERMINAL_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TERMINAL_H

#include <cstddef>
#include <optional>

// Columns of the terminal behind this descriptor; none when there is no terminal, or one that tells no width,
// as a serial line does.
std::optional<std::size_t> terminal_columns(int descriptor);

// Whether the locale of the environment writes UTF-8: LC_ALL, else LC_CTYPE, else LANG. The program's own
// locale stays as it is: numbers and messages are the same under each.
bool writes_utf8();

#endif
