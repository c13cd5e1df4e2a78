// SPDX-License-Identifier: Apache-2.0
#include "md_member.h"

#include "record.h"

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>

static constexpr text_t PREFIX = "dev-";

static bool has_word(text_t words, text_t wanted)
{
	while (!words.empty())
		if (take_until(&words, ',') == wanted)
			return true;
	return false;
}

// The kernel's words for one member, "in_sync,write_mostly". A write error that is not noted yet makes one
// "faulty" that is "in_sync" and works on.
static const char *role_of(text_t state)
{
	const bool in_sync = has_word(state, "in_sync");
	if (has_word(state, "journal"))
		return "journal";
	if (has_word(state, "faulty") && !in_sync)
		return "faulty";
	if (has_word(state, "replacement"))
		return "replacement";
	return in_sync ? "active" : "spare";
}

// Whether it is known that there is no such folder, not only that nobody could look.
static bool is_gone(const Folder &md, const char *entry, const Folder &folder)
{
	if (folder.is_open() ? !folder.missed() : folder.error() == ENOTDIR)
		return !folder.is_open();
	return !md.has(entry) && is_absence(errno);
}

static const char *device_name(Arena *arena, text_t sysname)
{
	char *name = arena->copy(sysname);
	for (size_t i = 0; name && i < sysname.size(); i++)
		if (name[i] == '!')
			name[i] = '/';
	return name ? shown_text(arena, {name, sysname.size()}) : nullptr;
}

static void read_member(Arena *arena, const Folder &md, const char *entry, Growing<block_member> *members)
{
	const Folder folder(md, entry);
	attribute_t state;
	block_member member = {};

	member.record_size = sizeof member;
	member.name = device_name(arena, text_t(entry).substr(PREFIX.size()));
	member.slot = read_int(folder, "slot");
	member.errors = read_count(folder, "errors");
	if (read_attribute(folder, "state", &state)) {
		member.state = shown_text(arena, state.text());
		member.role = role_of(state.text());
	}
	if (is_gone(md, entry, folder))
		return;
	block_member *place = members->add();
	if (place)
		*place = member;
}

// Slots first, of two in one the replacement last; then by name.
static int by_slot(const void *one, const void *other)
{
	const auto *left = static_cast<const block_member *>(one);
	const auto *right = static_cast<const block_member *>(other);
	const auto replaces = [](const block_member *member) {
		return member->role && strcmp(member->role, "replacement") == 0;
	};
	if (left->slot != right->slot)
		return static_cast<unsigned>(left->slot) < static_cast<unsigned>(right->slot) ? -1 : 1;
	if (replaces(left) != replaces(right))
		return replaces(right) ? -1 : 1;
	return compare_names(left->name ? left->name : "", right->name ? right->name : "");
}

// Of members about which nobody could be asked there are no numbers.
static void count_roles(const Growing<block_member> &members, block_array *array)
{
	array->active = array->failed = array->spare = 0;
	for (const block_member &member : members) {
		if (!member.role) {
			array->active = array->failed = array->spare = BLOCK_ABSENT;
			return;
		}
		if (strcmp(member.role, "faulty") == 0)
			array->failed++;
		else if (strcmp(member.role, "active") == 0)
			array->active++;
		else if (strcmp(member.role, "journal") != 0)
			array->spare++;
	}
}

bool read_members(Arena *arena, const Folder &md, block_array *array)
{
	Growing<block_member> members(arena);
	Chain<block_member> list(arena);
	Entries entries(md, ".");

	if (!entries.is_open())
		return false;
	while (const char *entry = entries.next())
		if (begins_with(entry, PREFIX) && entry[PREFIX.size()] != '\0')
			read_member(arena, md, entry, &members);
	if (entries.failed())
		return false;
	if (members.size() > 0)
		qsort(members.begin(), members.size(), sizeof(block_member), by_slot);
	for (block_member &member : members)
		list.append(&member);
	array->members = list.first();
	count_roles(members, array);
	return true;
}
