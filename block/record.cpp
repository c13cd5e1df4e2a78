// SPDX-License-Identifier: Apache-2.0
#include "record.h"

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>

int memory_counter_block;

static void count_records(int records)
{
	__atomic_add_fetch(&memory_counter_block, records, __ATOMIC_RELAXED);
}

static constexpr size_t aligned(size_t bytes)
{
	return (bytes + alignof(max_align_t) - 1) & ~(alignof(max_align_t) - 1);
}

template <class Value> static Value value_at(const void *record, size_t offset)
{
	Value value;
	memcpy(&value, static_cast<const char *>(record) + offset, sizeof value);
	return value;
}

template <class Value> static void put_at(void *record, size_t offset, Value value)
{
	memcpy(static_cast<char *>(record) + offset, &value, sizeof value);
}

static const void *next_of(const void *record)
{
	return value_at<const void *>(record, offsetof(record_head_t, next));
}

// Records lie before all texts, so that they stay aligned.
struct room_t {
	size_t records;
	size_t texts;
};

static void measure(const record_layout_t &layout, const void *record, room_t *room)
{
	room->records += aligned(layout.size);
	for (const size_t *at = layout.texts; *at; at++) {
		const char *text = value_at<const char *>(record, *at);
		room->texts += text ? strlen(text) + 1 : 0;
	}
	for (const auto *inner = layout.lists; inner->layout; inner++) {
		for (const void *item = value_at<const void *>(record, inner->offset); item;
		     item = next_of(item))
			measure(*inner->layout, item, room);
	}
}

struct cursor_t {
	char *records;
	char *texts;
};

static void *put_record(const record_layout_t &layout, const void *record, cursor_t *to);

static void put_texts(const record_layout_t &layout, void *copy, cursor_t *to)
{
	for (const size_t *at = layout.texts; *at; at++) {
		const char *text = value_at<const char *>(copy, *at);
		if (!text)
			continue;
		const size_t bytes = strlen(text) + 1;
		memcpy(to->texts, text, bytes);
		put_at(copy, *at, to->texts);
		to->texts += bytes;
	}
}

static void put_list(const record_layout_t &layout, void *owner, size_t place, cursor_t *to)
{
	const void *item = value_at<const void *>(owner, place);
	while (item) {
		void *copy = put_record(layout, item, to);
		put_at(owner, place, copy);
		owner = copy;
		place = offsetof(record_head_t, next);
		item = next_of(item);
	}
}

static void *put_record(const record_layout_t &layout, const void *record, cursor_t *to)
{
	void *copy = to->records;
	to->records += aligned(layout.size);
	memcpy(copy, record, layout.size);
	put_at(copy, offsetof(record_head_t, record_size), layout.size);
	put_at(copy, offsetof(record_head_t, next), static_cast<void *>(nullptr));
	put_texts(layout, copy, to);
	for (const auto *inner = layout.lists; inner->layout; inner++)
		put_list(*inner->layout, copy, inner->offset, to);
	return copy;
}

static void *packed(const record_layout_t &layout, const void *record)
{
	room_t room = {};
	measure(layout, record, &room);
	auto *block = static_cast<char *>(malloc(room.records + room.texts));
	if (!block)
		return nullptr;
	cursor_t to = {block, block + room.records};
	put_record(layout, record, &to);
	return block;
}

int hand_out(const record_layout_t &layout, const void *first, void **result, int *length)
{
	void *head = nullptr;
	void *last = nullptr;
	int count = 0;

	for (const void *record = first; record; record = next_of(record)) {
		void *copy = count < INT_MAX ? packed(layout, record) : nullptr;
		if (!copy) {
			release_list(&head);
			errno = ENOMEM;
			return -1;
		}
		if (last)
			put_at(last, offsetof(record_head_t, next), copy);
		else
			head = copy;
		last = copy;
		count++;
		count_records(1);
	}
	*result = head;
	*length = count;
	return 0;
}

void release_list(void **list)
{
	void *record = *list;
	int count = 0;

	while (record) {
		void *next = value_at<void *>(record, offsetof(record_head_t, next));
		free(record);
		record = next;
		count++;
	}
	*list = nullptr;
	count_records(-count);
}
