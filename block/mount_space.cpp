// SPDX-License-Identifier: Apache-2.0
#include "mount_space.h"

#include "links.h"

#include <limits.h>
#include <sys/statvfs.h>

// Who would have to answer, were they asked: all that begins with "fuse" is a program, also on a block
// device.
static bool asks_others(const mount_entry_t &mount)
{
	static constexpr text_t OF_SEVERAL_HOSTS[] = {"gfs", "gfs2", "lustre", "ocfs2"};
	for (const text_t type : OF_SEVERAL_HOSTS)
		if (mount.type == type)
			return true;
	return begins_with(mount.type, "fuse");
}

static bool lives_in_memory(const mount_entry_t &mount)
{
	static constexpr text_t TYPES[] = {"devtmpfs", "ramfs", "rootfs", "tmpfs"};
	for (const text_t type : TYPES)
		if (mount.type == type)
			return true;
	return false;
}

// Of the kernel's own, without a block device to tell by; good enough for what the process stands in.
static bool is_usual_root(const mount_entry_t &mount)
{
	static constexpr text_t TYPES[] = {"bcachefs", "btrfs", "overlay", "zfs"};
	for (const text_t type : TYPES)
		if (mount.type == type)
			return true;
	return false;
}

static constexpr char SUSPENDED[] = "suspended";

static bool is_suspended(const device_t &device)
{
	return device.record.state == SUSPENDED;
}

void note_suspended(void *, const Folder &folder, device_t *device)
{
	// Who does not tell is not trusted.
	if (is_kind(*device, "dm") && read_flag(folder, "dm/suspended") != 0)
		device->record.state = SUSPENDED;
}

// What stands on a suspended mapping waits for it, however far up.
static void spread_suspension(const Inventory &inventory)
{
	Growing<stand_t> stands(inventory.arena());
	bool spreads = false;
	for (const device_t *device : inventory)
		spreads = spreads || is_suspended(*device);
	if (!spreads)
		return;
	for (device_t *device : inventory)
		read_slaves(inventory.arena(), Folder(inventory.class_folder(), device->sysname), device);
	while (spreads && (stands.size() > 0 || find_stands(inventory, &stands))) {
		spreads = false;
		for (const stand_t &stand : stands) {
			if (!is_suspended(*stand.lower) || is_suspended(*stand.upper))
				continue;
			stand.upper->record.state = SUSPENDED;
			spreads = true;
		}
	}
}

static bool is_answered_here(const mount_entry_t &mount, const device_set_t &set)
{
	for (size_t i = 0; i < set.count; i++)
		if (is_suspended(*set.devices[i]))
			return false;
	return set.count > 0 && !asks_others(mount);
}

static long long bytes_of(unsigned long unit, unsigned long blocks)
{
	long long bytes;
	return __builtin_mul_overflow(unit, blocks, &bytes) ? static_cast<long long>(BLOCK_ABSENT) : bytes;
}

struct space_answer_t {
	bool is_there;
	mount_space_t space;
};

static space_answer_t ask(const mount_entry_t &mount)
{
	struct statvfs status;
	if (statvfs(mount.mount_point.data(), &status) != 0)
		return {};
	mount_space_t space = {};
	space.total = bytes_of(status.f_frsize, status.f_blocks);
	space.available = bytes_of(status.f_frsize, status.f_bavail);
	space.used = status.f_bfree > status.f_blocks
	                     ? static_cast<long long>(BLOCK_ABSENT)
	                     : bytes_of(status.f_frsize, status.f_blocks - status.f_bfree);
	return {true, space};
}

class Asker
{
public:
	Asker(const Growing<mount_entry_t> &mounts, const MountTree &tree) : mounts_(mounts), tree_(tree) {}

	bool prepare(Arena *arena, const device_set_t *of_mounts)
	{
		local_ = arena->make_array<bool>(mounts_.size() + 1);
		passable_ = arena->make_array<bool>(mounts_.size() + 1);
		if (!local_ || !passable_)
			return false;
		for (size_t i = 0; i < mounts_.size(); i++) {
			const bool is_root = tree_.parent(i) == MountTree::NONE;
			local_[i] = is_answered_here(mounts_[i], of_mounts[i]);
			passable_[i] = local_[i] || lives_in_memory(mounts_[i]) ||
			               (is_root && is_usual_root(mounts_[i]));
		}
		return true;
	}

	bool is_local(size_t mount) const { return local_[mount]; }

	bool may_ask(size_t mount) const
	{
		if (!local_[mount] || !tree_.is_visible(mount))
			return false;
		while (passable_[mount] && tree_.parent(mount) != MountTree::NONE)
			mount = tree_.parent(mount);
		return passable_[mount] && mounts_[mount].mount_point == "/";
	}

private:
	const Growing<mount_entry_t> &mounts_;
	const MountTree &tree_;
	bool *local_ = nullptr;
	bool *passable_ = nullptr;
};

mount_space_t *mount_space(const Inventory &inventory, const Growing<mount_entry_t> &mounts,
                           const MountTree &tree, const device_set_t *of_mounts)
{
	Arena *arena = inventory.arena();
	Asker asker(mounts, tree);
	const size_t *firsts = first_mounts(arena, mounts);
	auto *answers = arena->make_array<space_answer_t>(mounts.size() + 1);
	auto *spaces = arena->make_array<mount_space_t>(mounts.size() + 1);

	spread_suspension(inventory);
	if (!firsts || !answers || !spaces || !asker.prepare(arena, of_mounts))
		return nullptr;
	// One mount point that cannot be walked to says nothing of the next.
	for (size_t i = 0; i < mounts.size(); i++)
		if (!answers[firsts[i]].is_there && asker.may_ask(i))
			answers[firsts[i]] = ask(mounts[i]);
	for (size_t i = 0; i < mounts.size(); i++) {
		const space_answer_t &answer = answers[firsts[i]];
		const bool is_told = answer.is_there && asker.is_local(i);
		spaces[i] = is_told ? answer.space : mount_space_t{BLOCK_ABSENT, BLOCK_ABSENT, BLOCK_ABSENT};
	}
	return arena->is_exhausted() ? nullptr : spaces;
}
