// SPDX-License-Identifier: Apache-2.0
// Which mounts can be reached by their mount points, and which are hidden by others.
//
// A path is looked up from the process's root on. Where a mount stands on the way it takes over, and what is
// mounted further down in the one below it is found no more. Only at the root nothing takes over: the process
// stands in it already.
#ifndef DISKSCOUT_BLOCK_MOUNT_TREE_H
#define DISKSCOUT_BLOCK_MOUNT_TREE_H

#include "arena.h"
#include "mountinfo.h"

class MountTree
{
public:
	static constexpr size_t NONE = SIZE_MAX;

	explicit MountTree(Arena *arena) : arena_(arena) {}

	// The table has to stay. Takes time in proportion to its length, whatever it says: parents that are
	// not there or lead in a ring, ids that come twice. False without memory.
	bool build(const Growing<mount_entry_t> &mounts);

	// Mounts are known by their numbers in the table. The one that this one is mounted in; NONE for what
	// the process stands in, and where that is not in the table, as with a plain directory for a root.
	size_t parent(size_t mount) const { return places_[mount].parent; }
	// Whether its mount point leads to it.
	bool is_visible(size_t mount) const { return places_[mount].visible; }
	// The mount that an absolute path without links leads into; NONE.
	size_t holder_of(text_t path) const;

private:
	enum reach_t { UNKNOWN, BUSY, REACHED, UNREACHED };
	struct place_t {
		size_t parent;
		reach_t reach; // whether the way to its mount point leads over it
		bool visible;  // and ends there
	};
	struct id_t {
		int id;
		size_t mount;
	};

	static int compare_ids(const void *one, const void *other);
	text_t path_of(size_t mount) const { return (*mounts_)[mount].mount_point; }
	bool take_room(size_t count);
	size_t by_id(int id) const;
	size_t find_root() const;
	void find_parents();
	size_t *slot_of(size_t parent, text_t path, uint64_t hash) const;
	bool is_covered(size_t mount) const;
	bool is_reached(size_t mount);

	Arena *arena_;
	const Growing<mount_entry_t> *mounts_ = nullptr;
	size_t root_ = NONE; // what the process stands in
	place_t *places_ = nullptr;
	id_t *ids_ = nullptr; // in their order
	size_t *way_ = nullptr;
	// Mounts by parent and mount point: open addressing, of a size that is a power of two.
	size_t *slots_ = nullptr;
	size_t slot_mask_ = 0;
};

#endif
