// What the kinds of the hardware RAID side share: disk addresses, coded fields, sizes that may be negative.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_RAID_H
#define DISKSCOUT_TOOLS_DISKSCOUT_RAID_H

#include "kinds.h"

#include <string>

// A value of a coded field and its word.
struct coded_word_t {
	int value;
	const char *word;
};

// The word for a table cell; a value that has none is shown as the number that it is.
template <std::size_t Size> std::string word_of(int value, const coded_word_t (&words)[Size])
{
	for (const coded_word_t &w : words) {
		if (w.value == value)
			return w.word;
	}
	return std::to_string(value);
}

// The word as JSON: null when the value has none; the number stands beside it in any case.
template <std::size_t Size> ordered_json_t json_word(int value, const coded_word_t (&words)[Size])
{
	for (const coded_word_t &w : words) {
		if (w.value == value)
			return w.word;
	}
	return nullptr;
}

// Types of containers, which two kinds of records hold.
inline constexpr coded_word_t CONTAINER_TYPES[] = {
	{KESTREL_HWRAID_TYPE_UNKNOWN, "unknown"},      {KESTREL_HWRAID_TYPE_RAID0, "RAID 0"},
	{KESTREL_HWRAID_TYPE_RAID1, "RAID 1"},         {KESTREL_HWRAID_TYPE_RAID5, "RAID 5"},
	{KESTREL_HWRAID_TYPE_RAID10, "RAID 10"},       {KESTREL_HWRAID_TYPE_VOLUME, "volume"},
	{KESTREL_HWRAID_TYPE_RECONF, "reconfiguring"},
};

// The value of an address field that names no disk.
enum { NO_ADDRESS = -1 };

// A disk's address as the controller tool prints it in its container list: hexadecimal, the SCSI ID with two
// digits, "0:0a:0". "-" for none.
std::string address(int position);

// The number and its parts; null for none.
ordered_json_t json_address(int position);

// A size or an offset of a signed field. A negative one is an error of the tool's output, and looks like it.
std::string signed_size(long long bytes);

// What is certain of a size that has only its low 32 bits right: the size without all whole multiples of
// 4 GiB.
std::string size_modulo_4_gib(long long bytes);

#endif
