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

// The slot, when it is free: a candidate can be built in it and is dropped by clearing it again. Null when it
// is taken or outside the list.
template <class List> list_item_t<List> *list_open(List *list, int slot)
{
	list_renumber(list);
	if (slot == LIST_FIRST_FREE)
		slot = list_first_free(list);
	if (slot < 0 || slot >= list->lmt || list->item[slot].tag != 0)
		return nullptr;
	return &list->item[slot];
}

// Occupies the slot that was opened last: what renumbering once more would do.
template <class List> void list_keep(List *list, list_item_t<List> *item)
{
	const int slot = static_cast<int>(item - list->item);
	item->tag = 1;
	item->index = slot;
	item->parent = list;
	list->num_real++;
	if (list->num <= slot)
		list->num = slot + 1;
}

// Copies the candidate into the slot. Returns 0, or -1 when the slot is taken or outside the list.
template <class List> int list_add(List *list, int slot, const list_item_t<List> &candidate)
{
	list_item_t<List> *item = list_open(list, slot);
	if (!item)
		return -1;
	*item = candidate;
	list_keep(list, item);
	return 0;
}

// Whether a caller's filter keeps the candidate.
template <class Item> bool keeps(filter_func_t filter, const Item *candidate, const void *arg)
{
	return !filter || filter(candidate, arg) != 0;
}

// A walk calls its visitor for every item until it returns other than 0. Such a visitor is collect: it keeps
// what the filter keeps in the list of its context, and returns LIST_FULL when it finds no room.
constexpr int LIST_FULL = -2;
// Returned by a visitor that has seen enough.
constexpr int STOP_WALK = 1;

template <class List> struct collector_t {
	List *list;
	filter_func_t filter;
	const void *arg;
};

template <class List> int collect(const list_item_t<List> *item, void *context)
{
	const auto *to = static_cast<const collector_t<List> *>(context);
	if (!keeps(to->filter, item, to->arg))
		return 0;
	return list_add(to->list, LIST_FIRST_FREE, *item) == 0 ? 0 : LIST_FULL;
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
