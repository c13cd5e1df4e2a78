// SPDX-License-Identifier: Apache-2.0
// Memory of one query: handed out piece by piece, given back all at once when the query ends.
#ifndef DISKSCOUT_BLOCK_ARENA_H
#define DISKSCOUT_BLOCK_ARENA_H

#include <stddef.h>
#include <string_view>
#include <type_traits>

class Arena
{
public:
	Arena() = default;
	Arena(const Arena &) = delete;
	Arena &operator=(const Arena &) = delete;
	~Arena();

	// Zeroed and aligned for any record; null without memory, and from then on.
	void *take(size_t bytes);
	template <class Record> Record *make()
	{
		static_assert(std::is_trivially_destructible_v<Record>);
		return static_cast<Record *>(take(sizeof(Record)));
	}
	template <class Record> Record *make_array(size_t count)
	{
		static_assert(std::is_trivially_destructible_v<Record>);
		return count > SIZE_MAX_ / sizeof(Record)
		               ? give_up()
		               : static_cast<Record *>(take(count * sizeof(Record)));
	}
	// A copy that ends with NUL; null without memory.
	char *copy(std::string_view text);

	// Whether something could not be had. A query asks once, at its end: until then null is absent.
	bool is_exhausted() const { return exhausted_; }

private:
	struct chunk_t {
		chunk_t *next;
	};
	static constexpr size_t SIZE_MAX_ = ~size_t{0};

	std::nullptr_t give_up()
	{
		exhausted_ = true;
		return nullptr;
	}

	chunk_t *chunks_ = nullptr;
	char *free_ = nullptr;
	size_t left_ = 0;
	bool exhausted_ = false;
};

// Elements of one type in one block that grows; for records that are only copied.
template <class Item> class Growing
{
public:
	explicit Growing(Arena *arena) : arena_(arena) {}

	// A zeroed element at the end; null without memory. Earlier addresses no longer hold.
	Item *add()
	{
		if (count_ == room_ && !grow())
			return nullptr;
		return &items_[count_++];
	}
	void drop_last() { items_[--count_] = Item{}; }
	size_t size() const { return count_; }
	Item &operator[](size_t at) { return items_[at]; }
	const Item &operator[](size_t at) const { return items_[at]; }
	Item *begin() { return items_; }
	Item *end() { return items_ + count_; }
	const Item *begin() const { return items_; }
	const Item *end() const { return items_ + count_; }

private:
	bool grow()
	{
		const size_t room = room_ == 0 ? 16 : 2 * room_;
		Item *larger = arena_->make_array<Item>(room);
		if (!larger)
			return false;
		for (size_t i = 0; i < count_; i++)
			larger[i] = items_[i];
		items_ = larger;
		room_ = room;
		return true;
	}

	Arena *arena_;
	Item *items_ = nullptr;
	size_t count_ = 0;
	size_t room_ = 0;
};

#endif
