// SPDX-License-Identifier: Apache-2.0
// The words of a host table line, each checked strictly: a number with a stray character in it is a fault of
// the table and never a smaller number.
#ifndef DISKSCOUT_REPLAY_WORDS_H
#define DISKSCOUT_REPLAY_WORDS_H

#include <stddef.h>
#include <stdint.h>

namespace replay
{

// Ends `line` at its comment. "#" starts one at a word's beginning only, so that a name may hold it; a name
// that begins with it is written "\043".
void cut_comment(char *line);

// The next word at *cursor, NUL-terminated in place; null at the line's end.
char *next_word(char **cursor);

// Decimal, or hexadecimal after "0x"; at most `max`.
bool read_number(const char *word, uint64_t max, uint64_t *value);

// One or two hexadecimal digits.
bool read_hex_byte(const char *word, unsigned char *value);

// Pairs of hexadecimal digits, blanks free between words, until the line ends. False for an odd digit, a
// stray character or more than `room` bytes.
bool read_hex(char *cursor, unsigned char *bytes, size_t room, unsigned *used);

// "ENXIO" to its number; 0 for a name that is not known.
int errno_by_name(const char *name);

// Undoes the "\040" of a mount table in place. False for a broken escape.
bool unescape(char *text);

} // namespace replay

#endif
