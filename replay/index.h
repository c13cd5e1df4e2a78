// SPDX-License-Identifier: Apache-2.0
// Records with a path, in the order in which they were added, and found by it in any number.
#ifndef DISKSCOUT_REPLAY_INDEX_H
#define DISKSCOUT_REPLAY_INDEX_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace replay
{

// Made for memory that is zeroed and never given back one by one.
template <class Record> struct index_t {
	static constexpr size_t SLOTS = 8192;

	Record *first;
	Record *last;
	Record *slots[SLOTS];

	static size_t slot_of(const char *path)
	{
		uint32_t sum = 2166136261U; // FNV-1a
		for (; *path != '\0'; ++path)
			sum = (sum ^ static_cast<unsigned char>(*path)) * 16777619U;
		return sum % SLOTS;
	}

	Record *find(const char *path) const
	{
		Record *at = first ? slots[slot_of(path)] : nullptr;
		while (at && strcmp(at->path, path) != 0)
			at = at->same_slot;
		return at;
	}

	// Its path is set and stays.
	void add(Record *made)
	{
		Record **slot = &slots[slot_of(made->path)];
		made->same_slot = *slot;
		*slot = made;
		*(last ? &last->next : &first) = made;
		last = made;
	}
};

} // namespace replay

#endif
