// SPDX-License-Identifier: Apache-2.0
#include "mount_tree.h"

#include <stdlib.h>

// FNV-1a: that of a path's beginning leads on to those of all longer ones.
static constexpr uint64_t HASH_START = 0xcbf29ce484222325;

static uint64_t hash_byte(uint64_t hash, char byte)
{
	return (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
}

static uint64_t hash_of(text_t text)
{
	uint64_t hash = HASH_START;
	for (const char byte : text)
		hash = hash_byte(hash, byte);
	return hash;
}

// Whether the path is the mount point, or leads on from there.
static bool lies_at_or_below(text_t path, text_t mount_point)
{
	return mount_point == "/" || (begins_with(path, mount_point) &&
	                              (path.size() == mount_point.size() || path[mount_point.size()] == '/'));
}

int MountTree::compare_ids(const void *one, const void *other)
{
	const auto *left = static_cast<const id_t *>(one);
	const auto *right = static_cast<const id_t *>(other);
	if (left->id != right->id)
		return left->id < right->id ? -1 : 1;
	return left->mount < right->mount ? -1 : 1;
}

bool MountTree::take_room(size_t count)
{
	size_t slots = 16;
	while (slots < 2 * count)
		slots *= 2;
	places_ = arena_->make_array<place_t>(count);
	ids_ = arena_->make_array<id_t>(count);
	way_ = arena_->make_array<size_t>(count);
	slots_ = arena_->make_array<size_t>(slots);
	slot_mask_ = slots - 1;
	if (!places_ || !ids_ || !way_ || !slots_)
		return false;
	for (size_t i = 0; i < slots; i++)
		slots_[i] = NONE;
	return true;
}

// Of several, the first in the table.
size_t MountTree::by_id(int id) const
{
	size_t low = 0;
	size_t high = mounts_->size();
	while (low < high) {
		const size_t middle = low + (high - low) / 2;
		if (ids_[middle].id < id)
			low = middle + 1;
		else
			high = middle;
	}
	return low < mounts_->size() && ids_[low].id == id ? ids_[low].mount : NONE;
}

// The first mount at "/" that is mounted in itself, or in what is not in the table. A mount on a plain
// directory that is the process's root looks alike, but for others in the same parent: their paths could not
// be told, did the process not stand in that.
size_t MountTree::find_root() const
{
	size_t root = 0;
	while (root < mounts_->size() &&
	       (path_of(root) != "/" || (places_[root].parent != NONE && places_[root].parent != root)))
		root++;
	if (root == mounts_->size())
		return NONE;
	for (const mount_entry_t &mount : *mounts_)
		if (places_[root].parent == NONE && mount.parent_id == (*mounts_)[root].parent_id &&
		    mount.mount_point != "/")
			return NONE;
	return root;
}

void MountTree::find_parents()
{
	const size_t count = mounts_->size();
	for (size_t i = 0; i < count; i++)
		ids_[i] = {(*mounts_)[i].id, i};
	qsort(ids_, count, sizeof *ids_, compare_ids);
	for (size_t i = 0; i < count; i++)
		places_[i] = {by_id((*mounts_)[i].parent_id), UNKNOWN, false};
	root_ = find_root();
	// The table is no snapshot: a parent that went away while it was read hides nothing.
	for (size_t i = 0; i < count; i++)
		if (places_[i].parent == NONE)
			places_[i].parent = root_;
	if (root_ != NONE)
		places_[root_] = {NONE, REACHED, true};
}

// Where the mount at this path of its parent stands, or would stand.
size_t *MountTree::slot_of(size_t parent, text_t path, uint64_t hash) const
{
	const uint64_t mixed = (hash + parent) * 0x9e3779b97f4a7c15;
	size_t at = (mixed >> 32) & slot_mask_;
	while (slots_[at] != NONE && (places_[slots_[at]].parent != parent || path_of(slots_[at]) != path))
		at = (at + 1) & slot_mask_;
	return &slots_[at];
}

// Whether another mount in its parent stands on the way from there to its mount point.
bool MountTree::is_covered(size_t mount) const
{
	const size_t parent = places_[mount].parent;
	const text_t path = path_of(mount);
	size_t start = parent == NONE ? 1 : path_of(parent).size();

	if (parent == root_ && path == "/")
		return true;
	if (parent != NONE && !lies_at_or_below(path, path_of(parent)))
		return true;
	if (parent == root_)
		start++;
	uint64_t hash = HASH_START;
	for (size_t end = 1; end < path.size(); end++) {
		hash = hash_byte(hash, path[end - 1]);
		const bool ends_name = end == 1 || path[end] == '/';
		if (ends_name && end >= start && *slot_of(parent, path.substr(0, end), hash) != NONE)
			return true;
	}
	return *slot_of(parent, path, hash_byte(hash, path.back())) != mount;
}

// Up to a mount of which it is known, and down the same way again.
bool MountTree::is_reached(size_t mount)
{
	size_t steps = 0;
	while (mount != NONE && places_[mount].reach == UNKNOWN) {
		places_[mount].reach = BUSY;
		way_[steps++] = mount;
		mount = places_[mount].parent;
	}
	bool reached = mount == NONE || places_[mount].reach == REACHED;
	while (steps > 0) {
		const size_t at = way_[--steps];
		reached = reached && !is_covered(at);
		places_[at].reach = reached ? REACHED : UNREACHED;
	}
	return reached;
}

bool MountTree::build(const Growing<mount_entry_t> &mounts)
{
	mounts_ = &mounts;
	root_ = NONE;
	if (mounts.size() == 0)
		return true;
	if (!take_room(mounts.size()))
		return false;
	find_parents();
	// Of two at one place the later one is what is found there.
	for (size_t i = 0; i < mounts.size(); i++)
		*slot_of(places_[i].parent, path_of(i), hash_of(path_of(i))) = i;
	for (size_t i = 0; i < mounts.size(); i++) {
		const text_t path = path_of(i);
		if (i != root_)
			places_[i].visible = is_reached(i) && *slot_of(i, path, hash_of(path)) == NONE;
	}
	return true;
}

size_t MountTree::holder_of(text_t path) const
{
	size_t found = NONE;
	for (size_t i = 0; i < mounts_->size(); i++)
		if (is_visible(i) && lies_at_or_below(path, path_of(i)) &&
		    (found == NONE || path_of(i).size() >= path_of(found).size()))
			found = i;
	return found;
}
