// SPDX-License-Identifier: Apache-2.0
// The tables of mounts and of swap areas, on a host with two disks.
#include "block.h"
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "diskscout_block.h"
#include "queries.h"
#include "record.h"

#include <map>
#include <string_view>
#include <vector>

namespace
{

// Whoever asks /fuse breaks a promise while a program is mounted there, or on the way: it answers.
constexpr char TABLE[] = "mount / 4096 1000 900 800\n"
			 "mount /mnt 512 100 25\n"
			 "mount /fuse 4096 7 7\n";

// The path is that of the mount, or leads on from there.
bool is_below(std::string_view path, std::string_view mount_point)
{
	return mount_point == "/" || path == mount_point ||
	       (path.substr(0, mount_point.size()) == mount_point && path[mount_point.size()] == '/');
}

// Which mounts hide others, step by step and slowly.
class Walk
{
public:
	explicit Walk(const block_mount *first)
	{
		std::map<int, size_t> by_id;
		for (; first && std::string_view(first->kind) == "mount"; first = first->next) {
			by_id.emplace(first->id, mounts_.size());
			mounts_.push_back(first);
		}
		for (size_t i = 0; i < mounts_.size(); i++) {
			const auto found = by_id.find(mounts_[i]->parent_id);
			parents_.push_back(found == by_id.end() ? NONE : found->second);
			if (root_ == NONE && path_of(i) == "/" && (parents_[i] == NONE || parents_[i] == i))
				root_ = i;
		}
		const size_t first_root = root_;
		for (size_t i = 0; i < mounts_.size(); i++)
			if (first_root != NONE && parents_[first_root] == NONE && path_of(i) != "/" &&
			    mounts_[i]->parent_id == mounts_[first_root]->parent_id)
				root_ = NONE;
		for (size_t &parent : parents_)
			parent = parent == NONE ? root_ : parent;
	}

	bool is_right() const
	{
		for (size_t i = 0; i < mounts_.size(); i++)
			if (mounts_[i]->shadowed != (end_of(path_of(i)) == i ? 0 : 1))
				return false;
		return true;
	}

private:
	static constexpr size_t NONE = ~size_t{0};

	std::string_view path_of(size_t mount) const { return mounts_[mount]->mount_point; }

	// The mount that takes over first on the way from this one to the path.
	size_t step(size_t from, std::string_view path) const
	{
		size_t next = NONE;
		for (size_t i = 0; i < mounts_.size(); i++) {
			const bool stands_on_root = from == root_ && path_of(i) == "/";
			if (i == root_ || parents_[i] != from || stands_on_root ||
			    !is_below(path, path_of(i)) ||
			    (from != NONE && !is_below(path_of(i), path_of(from))))
				continue;
			if (next == NONE || path_of(i).size() <= path_of(next).size())
				next = i;
		}
		return next;
	}

	size_t end_of(std::string_view path) const
	{
		size_t at = root_;
		for (size_t next = step(at, path); next != NONE; next = step(at, path))
			at = next;
		return at;
	}

	std::vector<const block_mount *> mounts_;
	std::vector<size_t> parents_;
	size_t root_ = NONE;
};

bool are_devices(const block_text *names)
{
	for (; names; names = names->next)
		if (std::string_view(names->text) != "sda" && std::string_view(names->text) != "sdb")
			return false;
	return true;
}

bool is_answered_by_a_program(const block_mount &mount)
{
	return mount.type && std::string_view(mount.type).substr(0, 4) == "fuse";
}

bool is_fuse_a_program(const block_mount *first)
{
	for (; first; first = first->next)
		if (is_answered_by_a_program(*first) && first->shadowed == 0 &&
		    is_below("/fuse", first->mount_point))
			return true;
	return false;
}

// Absent together, or those of a mount point that may be asked.
bool is_space(const block_mount &mount, bool may_ask_fuse)
{
	const bool of_root = mount.total == 4096000 && mount.used == 409600 && mount.available == 3276800;
	const bool of_disk = mount.total == 51200 && mount.used == 38400 && mount.available == 12800;
	const bool of_fuse = mount.total == 28672 && mount.used == 0 && mount.available == 28672;
	return (mount.devices && !is_answered_by_a_program(mount) &&
	        (of_root || of_disk || (of_fuse && may_ask_fuse))) ||
	       (mount.total == BLOCK_ABSENT && mount.used == BLOCK_ABSENT && mount.available == BLOCK_ABSENT);
}

std::string wrong_mount(const block_mount &mount, bool may_ask_fuse)
{
	return broken({
		{is_shown(mount.source) && is_shown(mount.type) && is_shown(mount.root) &&
	                 is_shown(mount.mount_point) && is_shown(mount.options) &&
	                 is_shown(mount.super_options),
	         "a text of a mount"},
		{mount.type && mount.root && mount.options && mount.super_options, "a text that is absent"},
		{mount.mount_point && mount.mount_point[0] == '/', "mount point"},
		{mount.id >= 0 && mount.parent_id >= 0, "id"},
		{mount.major >= 0 && mount.minor >= 0, "device number"},
		{!mount.type || is_space(mount, may_ask_fuse), "space"},
	});
}

std::string wrong_swap(const block_mount &swap)
{
	return broken({
		{swap.source && is_shown(swap.source) && swap.type && is_shown(swap.type),
	         "a text of a swap area"},
		{!swap.mount_point && !swap.root && !swap.options && !swap.super_options,
	         "a swap area with a mount's texts"},
		{swap.id == BLOCK_ABSENT && swap.parent_id == BLOCK_ABSENT && swap.major == BLOCK_ABSENT &&
	                 swap.minor == BLOCK_ABSENT && swap.shadowed == BLOCK_ABSENT,
	         "a swap area with a mount's numbers"},
		{swap.total >= 0 && swap.used >= 0 && swap.available == BLOCK_ABSENT, "size of a swap area"},
		{is_between(swap.priority, -32768, 32767), "priority"},
	});
}

std::string wrong_list(const block_mount *first, int count)
{
	const bool may_ask_fuse = !is_fuse_a_program(first);
	bool swaps = false;
	for (const block_mount *at = first; at; at = at->next, count--) {
		const bool is_swap = std::string_view(at->kind) == "swap";
		std::string wrong = is_swap ? wrong_swap(*at) : wrong_mount(*at, may_ask_fuse);
		if (!wrong.empty())
			return wrong;
		if (swaps && !is_swap)
			return "a mount behind a swap area";
		if (!are_devices(at->devices))
			return "devices";
		swaps = is_swap;
	}
	return broken({{count == 0, "number of records"}, {Walk(first).is_right(), "what is hidden"}});
}

} // namespace

std::string check_mounts(const char *path)
{
	static const Host host("mounts", TABLE);
	const std::string content = content_of(path);
	const size_t end = content.find("Filename");
	host.file("proc/self/mountinfo", content.substr(0, end));
	host.file("proc/swaps", end == std::string::npos ? "" : content.substr(end));
	for (const char *disk : {"sda", "sdb"}) {
		const std::string folder = std::string("sys/class/block/") + disk;
		host.file(folder + "/uevent", std::string("MAJOR=8\nMINOR=") + (disk[2] == 'a' ? "0" : "16") +
		                                      "\nDEVNAME=" + disk + "\nDEVTYPE=disk\n");
		host.file(std::string("sys/fs/btrfs/1-2/devices/") + disk, "");
	}

	const Visit visit(host);
	void *list = nullptr;
	int count = 0;
	if (list_mounts(&list, &count) != 0)
		return "the query failed";
	std::string wrong = wrong_list(static_cast<const block_mount *>(list), count);
	release_list(&list);
	return wrong;
}
