// SPDX-License-Identifier: Apache-2.0
// Records as they are handed out: each with its texts and inner lists in one allocation.
//
// A query fills the public records in its arena, texts and inner lists pointing wherever they lie; at its end
// each record is measured, allocated once and copied. What holds pointers is known by the layouts of
// layout.cpp.
#ifndef DISKSCOUT_BLOCK_RECORD_H
#define DISKSCOUT_BLOCK_RECORD_H

#include "arena.h"
#include "diskscout_block.h"

struct record_layout_t {
	struct inner_t {
		size_t offset; // of the list's first pointer
		const record_layout_t *layout;
	};

	size_t size;
	const size_t *texts;  // offsets of the text pointers, up to one of 0
	const inner_t *lists; // up to one without a layout
};

// What every record begins with.
struct record_head_t {
	size_t record_size;
	record_head_t *next;
};

extern const record_layout_t DEVICE_LAYOUT;
extern const record_layout_t LINK_LAYOUT;
extern const record_layout_t CONTENT_LAYOUT;
extern const record_layout_t MOUNT_LAYOUT;
extern const record_layout_t ARRAY_LAYOUT;

// Copies a list out of its arena, one allocation a record. 0; or -1 without memory, and nothing is left.
int hand_out(const record_layout_t &layout, const void *first, void **result, int *length);

// Releases such a list and sets *list to null.
void release_list(void **list);

// A list under construction: public records in an arena, linked by `next`.
template <class Record> class Chain
{
public:
	explicit Chain(Arena *arena) : arena_(arena) {}

	// A zeroed record of its size at the end; null without memory.
	Record *add()
	{
		Record *record = arena_->make<Record>();
		if (!record)
			return nullptr;
		record->record_size = sizeof *record;
		append(record);
		return record;
	}
	void append(Record *record)
	{
		*end_ = record;
		end_ = &record->next;
	}
	Record *first() const { return first_; }

private:
	Arena *arena_;
	Record *first_ = nullptr;
	Record **end_ = &first_;
};

#endif
