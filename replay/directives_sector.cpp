// The lines of a host table that name the content of a device, sector by sector.
//
//   table 0                  a partition table, and what stands in its last bytes
//     entry 80 83 63 262017  active, type, start, size
//     entry -
//   sector 5 4142 43         raw bytes
//     + 4445

#include "replay/directives.h"

#include "replay/words.h"

#include <cstring>

namespace replay
{

static sector *add_sector(reading &in, const char *number)
{
	uint64_t value = 0;
	if (number == nullptr || !read_number(number, content_sectors_max - 1, &value)) {
		fault(in, "no sector number");
		return nullptr;
	}
	for (const sector *at = in.dev->sectors; at != nullptr; at = at->next) {
		if (at->number == value) {
			fault(in, "the sector is in the table already");
			return nullptr;
		}
	}
	sector *made = add(in, &in.dev->sectors);
	if (made != nullptr) {
		made->number = value;
		made->line = in.line;
	}
	return made;
}

// The last two bytes of a partition-table sector, in the order they stand there.
static bool read_signature(const reading &in, const char *word, unsigned char *to)
{
	if (word == nullptr)
		word = "55aa";
	if (strcmp(word, "none") == 0)
		return true;
	const char high[3] = {word[0], word[0] == '\0' ? '\0' : word[1], '\0'};
	if (strlen(word) != 4 || !read_hex_byte(high, &to[0]) || !read_hex_byte(word + 2, &to[1]))
		return fault(in, "the signature is 55aa, aa55, none or 4 hexadecimal digits");
	return true;
}

bool read_table(reading &in, char *cursor)
{
	const char *number = next_word(&cursor);
	const char *signature = next_word(&cursor);

	if (next_word(&cursor) != nullptr)
		return fault(in, "words after the signature");
	sector *made = add_sector(in, number);
	in.open_table = made;
	return made != nullptr && read_signature(in, signature, &made->data[510]);
}

static void put_le32(unsigned char *to, uint64_t value)
{
	for (unsigned i = 0; i < 4; ++i)
		to[i] = static_cast<unsigned char>(value >> (8 * i));
}

bool read_entry(reading &in, char *cursor)
{
	static const uint64_t max[2] = {UINT32_MAX, UINT32_MAX};
	uint64_t values[2] = {};
	const char *active = next_word(&cursor);
	const char *type = next_word(&cursor);

	if (in.open_table->entries == 4)
		return fault(in, "a table has four entries");
	unsigned char *slot = in.open_table->data + 446 + size_t{16} * in.open_table->entries;
	in.open_table->entries++;
	if (active != nullptr && strcmp(active, "-") == 0 && type == nullptr)
		return true;
	if (active == nullptr || type == nullptr || !read_hex_byte(active, &slot[0]) ||
	    !read_hex_byte(type, &slot[4]))
		return fault(in, "entry takes \"-\", or two hexadecimal bytes and two numbers");
	if (read_numbers(in, cursor, 2, 2, max, values) == 0)
		return false;
	put_le32(&slot[8], values[0]);
	put_le32(&slot[12], values[1]);
	return true;
}

bool add_raw_bytes(reading &in, char *cursor)
{
	sector *to = in.open_raw;
	const unsigned before = to->used;
	if (!read_hex(cursor, to->data, sector_bytes, &to->used))
		return fault(in, "no pairs of hexadecimal digits, or more than 512 bytes");
	return to->used > before || fault(in, "the bytes are missing");
}

bool read_sector(reading &in, char *cursor)
{
	in.open_raw = add_sector(in, next_word(&cursor));
	return in.open_raw != nullptr && add_raw_bytes(in, cursor);
}

} // namespace replay
