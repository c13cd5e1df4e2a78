// SPDX-License-Identifier: Apache-2.0
// The lines of a host table that name the content of a device, sector by sector.
//
//   table 0                  a partition table, and what stands in its last bytes
//     entry 80 83 63 262017  active, type, start, size
//     entry -
//   sector 5 4142 43         raw bytes
//     + 4445
#include "replay/directives.h"

#include "replay/words.h"

#include <string.h>

namespace replay
{

static sector_t *add_sector(reading_t &in, const char *number)
{
	uint64_t value = 0;
	if (!number || !read_number(number, CONTENT_SECTORS_MAX - 1, &value)) {
		fault(in, "no sector number");
		return nullptr;
	}
	for (const sector_t *at = in.dev->sectors; at; at = at->next) {
		if (at->number == value) {
			fault(in, "the sector is in the table already");
			return nullptr;
		}
	}
	sector_t *made = add(in, &in.dev->sectors);
	if (made) {
		made->number = value;
		made->line = in.line;
	}
	return made;
}

// The last two bytes of a partition-table sector, in the order they stand there.
static bool read_signature(const reading_t &in, const char *word, unsigned char *to)
{
	if (!word)
		word = "55aa";
	if (strcmp(word, "none") == 0)
		return true;
	const char high[3] = {word[0], word[0] == '\0' ? '\0' : word[1], '\0'};
	if (strlen(word) != 4 || !read_hex_byte(high, &to[0]) || !read_hex_byte(word + 2, &to[1]))
		return fault(in, "the signature is 55aa, aa55, none or 4 hexadecimal digits");
	return true;
}

bool read_table(reading_t &in, char *cursor)
{
	const char *number = next_word(&cursor);
	const char *signature = next_word(&cursor);

	if (next_word(&cursor) != nullptr)
		return fault(in, "words after the signature");
	sector_t *made = add_sector(in, number);
	in.open_table = made;
	return made && read_signature(in, signature, &made->data[510]);
}

static void put_le32(unsigned char *to, uint64_t value)
{
	for (unsigned i = 0; i < 4; ++i)
		to[i] = static_cast<unsigned char>(value >> (8 * i));
}

bool read_entry(reading_t &in, char *cursor)
{
	static constexpr uint64_t MOST[2] = {UINT32_MAX, UINT32_MAX};
	uint64_t values[2] = {};
	const char *active = next_word(&cursor);
	const char *type = next_word(&cursor);

	if (in.open_table->entries == 4)
		return fault(in, "a table has four entries");
	unsigned char *slot = in.open_table->data + 446 + size_t{16} * in.open_table->entries;
	in.open_table->entries++;
	if (active && strcmp(active, "-") == 0 && !type)
		return true;
	if (!active || !type || !read_hex_byte(active, &slot[0]) || !read_hex_byte(type, &slot[4]))
		return fault(in, "entry takes \"-\", or two hexadecimal bytes and two numbers");
	if (read_numbers(in, cursor, 2, 2, MOST, values) == 0)
		return false;
	put_le32(&slot[8], values[0]);
	put_le32(&slot[12], values[1]);
	return true;
}

bool add_raw_bytes(reading_t &in, char *cursor)
{
	sector_t *to = in.open_raw;
	const unsigned before = to->used;
	if (!read_hex(cursor, to->data, SECTOR_BYTES, &to->used))
		return fault(in, "no pairs of hexadecimal digits, or more than 512 bytes");
	return to->used > before || fault(in, "the bytes are missing");
}

bool read_sector(reading_t &in, char *cursor)
{
	in.open_raw = add_sector(in, next_word(&cursor));
	return in.open_raw && add_raw_bytes(in, cursor);
}

} // namespace replay
