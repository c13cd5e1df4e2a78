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
	if (is_kind(*device, "dm") && read_flag(folder, "dm/suspended") == 1)
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

static bool is_local(const mount_entry_t &mount, const device_set_t &set)
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

static bool ask(const mount_entry_t &mount, space_t *space)
{
	struct statvfs answer;
	if (statvfs(mount.mount_point.data(), &answer) != 0)
		return false;
	space->total = bytes_of(answer.f_frsize, answer.f_blocks);
	space->available = bytes_of(answer.f_frsize, answer.f_bavail);
	if (answer.f_bfree <= answer.f_blocks)
		space->used = bytes_of(answer.f_frsize, answer.f_blocks - answer.f_bfree);
	return true;
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
			local_[i] = is_local(mounts_[i], of_mounts[i]);
			passable_[i] = local_[i] || lives_in_memory(mounts_[i]) ||
			               (is_root && is_usual_root(mounts_[i]));
		}
		return true;
	}

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

space_t *mount_space(const Inventory &inventory, const Growing<mount_entry_t> &mounts, const MountTree &tree,
                     const device_set_t *of_mounts)
{
	Arena *arena = inventory.arena();
	Asker asker(mounts, tree);
	const size_t *firsts = first_mounts(arena, mounts);
	auto *spaces = arena->make_array<space_t>(mounts.size() + 1);
	auto *answered = arena->make_array<bool>(mounts.size() + 1);

	spread_suspension(inventory);
	if (!firsts || !spaces || !answered || !asker.prepare(arena, of_mounts))
		return nullptr;
	for (size_t i = 0; i < mounts.size(); i++)
		spaces[i] = {BLOCK_ABSENT, BLOCK_ABSENT, BLOCK_ABSENT};
	// One mount point that cannot be walked to says nothing of the next.
	for (size_t i = 0; i < mounts.size(); i++)
		if (!answered[firsts[i]] && asker.may_ask(i))
			answered[firsts[i]] = ask(mounts[i], &spaces[firsts[i]]);
	for (size_t i = 0; i < mounts.size(); i++)
		spaces[i] = spaces[firsts[i]];
	return arena->is_exhausted() ? nullptr : spaces;
}
