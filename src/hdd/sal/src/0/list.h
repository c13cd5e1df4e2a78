// SPDX-License-Identifier: Apache-2.0
// The bounded list: one plain record of fixed size that every reader fills in place.
//
// A list begins with num, num_real, lmt and parent and ends in the array `item`; an item begins with tag,
// index and parent. A slot whose tag is 0 is free. num is one more than the highest occupied slot, num_real
// the number of occupied slots: they differ when the list has holes.
#ifndef DISKSCOUT_HDD_SAL_0_LIST_H
#define DISKSCOUT_HDD_SAL_0_LIST_H

#include "hdd/sal/src/0/def.h"

#include <string.h>
#include <type_traits>

// Before a large local that the next call clears anyway: spares the compiler's own clearing of all locals.
#define CLEARED_BY_CALLEE __attribute__((uninitialized))

// As a slot: the first free one.
constexpr int LIST_FIRST_FREE = -1;

template <class List> constexpr int list_capacity()
{
	return static_cast<int>(std::extent<decltype(List::item)>::value);
}

template <class List> void list_clear(List *list)
{
	memset(list, 0, sizeof *list);
	list->lmt = list_capacity<List>();
}

template <class List> void list_renumber(List *list)
{
	list->num = 0;
	list->num_real = 0;
	for (int slot = 0; slot < list->lmt; slot++) {
		if (list->item[slot].tag == 0)
			continue;
		list->item[slot].tag = 1;
		list->item[slot].index = slot;
		list->item[slot].parent = list;
		list->num_real++;
		list->num = slot + 1;
	}
}

template <class List> int list_first_free(const List *list)
{
	// Without holes there is nothing to search; large items lie far apart.
	int slot = list->num == list->num_real ? list->num : 0;
	while (slot < list->lmt && list->item[slot].tag != 0)
		slot++;
	return slot;
}

template <class List> using list_item_t = std::remove_extent_t<decltype(List::item)>;

// Whether a caller's filter keeps the candidate.
template <class Item> bool keeps(filter_func_t filter, const Item *candidate, const void *arg)
{
	return !filter || filter(candidate, arg) != 0;
}

// The one way into a list: copies the candidate into the slot if the filter keeps it. Returns 0, also for one
// that is dropped, or -1 when the slot is taken or outside the list.
template <class List>
int list_add(List *list, int slot, const list_item_t<List> &candidate, filter_func_t filter = nullptr,
             const void *arg = nullptr)
{
	if (!keeps(filter, &candidate, arg))
		return 0;
	list_renumber(list);
	if (slot == LIST_FIRST_FREE)
		slot = list_first_free(list);
	if (slot < 0 || slot >= list->lmt || list->item[slot].tag != 0)
		return -1;
	list_item_t<List> *item = &list->item[slot];
	*item = candidate;
	// What renumbering once more would do.
	item->tag = 1;
	item->index = slot;
	item->parent = list;
	list->num_real++;
	if (list->num <= slot)
		list->num = slot + 1;
	return 0;
}

// Adds all that a reader has: while (reader->next(&item)). Returns 0, or -1 when the reader's result is not 0
// or an item has found no room: the list then holds all the others.
template <class List, class Reader>
int list_fill(List *list, Reader *reader, filter_func_t filter, const void *arg)
{
	list_item_t<List> item = {};
	int result = 0;
	while (reader->next(&item))
		if (list_add(list, LIST_FIRST_FREE, item, filter, arg) != 0)
			result = -1;
	return reader->result() == 0 ? result : -1;
}

// The occupied slots of a list, in slot order: for (const auto &item : live_items(list)).
template <class List> class live_items
{
public:
	explicit live_items(const List &list) : list_(list) {}

	class iterator
	{
	public:
		iterator(const List &list, int slot) : list_(list), slot_(slot) { skip_free(); }
		const auto &operator*() const { return list_.item[slot_]; }
		bool operator!=(const iterator &other) const { return slot_ != other.slot_; }
		iterator &operator++()
		{
			slot_++;
			skip_free();
			return *this;
		}

	private:
		void skip_free()
		{
			while (slot_ < list_capacity<List>() && list_.item[slot_].tag == 0)
				slot_++;
		}
		const List &list_;
		int slot_;
	};

	iterator begin() const { return iterator(list_, 0); }
	iterator end() const { return iterator(list_, list_capacity<List>()); }

private:
	const List &list_;
};

// The two lines' beginnings that every dump of a list on standard error shares. Addresses show their low
// 32 bits.
void dump_list_head(int num, int num_real, int lmt, const void *parent, const void *list);
void dump_item_head(int index, int tag, const void *parent);

template <class List> void dump_list_head(const List *list)
{
	dump_list_head(list->num, list->num_real, list->lmt, list->parent, list);
}

template <class Item> void dump_item_head(const Item &item)
{
	dump_item_head(item.index, item.tag, item.parent);
}

#endif
