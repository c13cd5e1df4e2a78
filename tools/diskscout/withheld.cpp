// SPDX-License-Identifier: Apache-2.0
// Values that the kernel tells to root alone. The plug-in leaves them out without a word.
#include "withheld.h"

#include "block_fields.h"
#include "columns.h"
#include "reasons_lines.h"
#include "reasons_node.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fmt/format.h>
#include <initializer_list>
#include <map>
#include <set>
#include <string_view>
#include <sys/statvfs.h>

// What a worker finds out; 0 when it does not come to an end.
template <typename Look> static int answer_of_work(enquiry_t &from, const char *stage, const Look &look)
{
	const worked_t worked = from.work(stage, enquiry_t::place_t::HERE, [&](const worker_link_t &to) {
		const int answer = look();
		to.result(&answer, sizeof answer);
	});
	int answer = 0;
	if (worked.is_done)
		memcpy(&answer, worked.result(), sizeof answer);
	return answer;
}

// The tables of all mappings are asked for at one node.
static void add_mappings(const section_t &devices, enquiry_t &from, reason_lines_t *lines)
{
	static const char CONTROL[] = "/dev/mapper/control";
	std::vector<std::string> names;
	for (const row_t &row : devices.answer.rows) {
		if (text_within<&block_device::dm_kind>(row) && !text_within<&block_device::dm_target>(row))
			names.emplace_back(record_of<block_device>(row).name);
	}
	if (names.empty())
		return;
	const int error = answer_of_work(from, "device mapper", [] { return node_t(CONTROL).error(); });
	if (!is_denied(error))
		return;
	const reason_t reason = {
		severity_t::WARNING, code_t::NO_PERMISSION,
		fmt::format("targets are not told, {} cannot be opened: {}", CONTROL, strerror(error))};
	for (const std::string &name : names)
		lines->add(name, reason);
}

// ---- the space of mounts ----

static bool begins_with(std::string_view text, std::string_view prefix)
{
	return text.substr(0, prefix.size()) == prefix;
}

// The bytes behind a text of the plug-in, where some stand as "\\x" and two digits.
static std::string bytes_of(std::string_view text)
{
	std::string bytes;
	while (!text.empty()) {
		unsigned char byte = static_cast<unsigned char>(text[0]);
		std::size_t length = 1;
		if (begins_with(text, "\\x") && text.size() >= 4 &&
		    std::from_chars(text.data() + 2, text.data() + 4, byte, 16).ptr == text.data() + 4)
			length = 4;
		bytes += static_cast<char>(byte);
		text.remove_prefix(length);
	}
	return bytes;
}

using mounts_t = std::map<int, const block_mount *>; // by id

// The plug-in asks nobody but the kernel: no network, no program.
static bool lives_elsewhere(const block_mount &mount)
{
	static const std::set<std::string_view> OF_SEVERAL_HOSTS = {"gfs", "gfs2", "lustre", "ocfs2"};
	const std::string_view type = mount.type ? mount.type : "";
	return !mount.devices || begins_with(type, "fuse") || OF_SEVERAL_HOSTS.count(type) > 0;
}

static bool lives_in_memory(const block_mount &mount)
{
	static const std::set<std::string_view> TYPES = {"devtmpfs", "ramfs", "rootfs", "tmpfs"};
	return mount.type && TYPES.count(mount.type) > 0;
}

static bool is_withheld(const block_mount &mount, const mounts_t &mounts, std::size_t depth = 0);

// Whether the way to it leads through nothing that could wait.
static bool is_near(const block_mount &mount, const mounts_t &mounts, std::size_t depth)
{
	const auto parent = mounts.find(mount.parent_id);
	if (parent == mounts.end() || parent->second == &mount)
		return true;
	if (depth > mounts.size())
		return false;
	const block_mount &over = *parent->second;
	if (over.total == BLOCK_ABSENT && !lives_in_memory(over))
		return is_withheld(over, mounts, depth + 1);
	return is_near(over, mounts, depth + 1);
}

static bool is_withheld(const block_mount &mount, const mounts_t &mounts, std::size_t depth)
{
	if (mount.total != BLOCK_ABSENT || mount.shadowed != 0 || lives_elsewhere(mount) ||
	    !is_near(mount, mounts, depth))
		return false;
	struct statvfs space;
	return statvfs(bytes_of(mount.mount_point).c_str(), &space) != 0 && is_denied(errno);
}

// What lies on one that is suspended would wait for it.
static bool is_anything_suspended(enquiry_t &from)
{
	const answer_t devices = answer_of<block_device>(from.block_list(CMD_GET_BLOCK_DEVICES), from);
	return std::any_of(devices.rows.begin(), devices.rows.end(), [](const row_t &row) {
		const char *const state = text_within<&block_device::state>(row);
		return state && state == std::string_view("suspended");
	});
}

// Null for a swap area, and for a record that ends before its space.
static const block_mount *mount_of(const row_t &row)
{
	const bool is_whole = member_within<&block_mount::total>(row) != nullptr;
	const auto &mount = record_of<block_mount>(row);
	return is_whole && mount.mount_point ? &mount : nullptr;
}

static void add_mounts(const section_t &section, enquiry_t &from, reason_lines_t *lines)
{
	std::vector<const block_mount *> lacking;
	for (const row_t &row : section.answer.rows) {
		const block_mount *const mount = mount_of(row);
		if (mount && mount->total == BLOCK_ABSENT && !lives_elsewhere(*mount))
			lacking.push_back(mount);
	}
	if (lacking.empty() || is_anything_suspended(from))
		return;
	mounts_t mounts;
	for (const row_t &row : answer_of<block_mount>(from.block_list(CMD_GET_BLOCK_MOUNTS), from).rows) {
		if (const block_mount *const mount = mount_of(row))
			mounts.emplace(mount->id, mount);
	}
	const reason_t reason = {severity_t::WARNING, code_t::NO_PERMISSION,
	                         fmt::format("space is not told: {}", strerror(EACCES))};
	const worked_t worked = from.work("mounts", enquiry_t::place_t::HERE, [&](const worker_link_t &to) {
		std::string denied;
		for (const block_mount *mount : lacking)
			denied += is_withheld(*mount, mounts) ? 'y' : 'n';
		to.result(denied);
	});
	const std::string_view denied = worked.text();
	for (std::size_t i = 0; i < denied.size(); i++) {
		if (denied[i] == 'y')
			lines->add(lacking[i]->mount_point, reason);
	}
}

// Columns of theirs tell that, unless others are wanted.
static void add_contents(const section_t &section, reason_lines_t *lines)
{
	for (const row_t &row : section.answer.rows) {
		const auto *const error = member_within<&block_content::error>(row);
		if (error && is_denied(*error))
			lines->add(record_of<block_content>(row).name,
			           {severity_t::WARNING, code_t::NO_PERMISSION,
			            fmt::format("not read: {}", strerror(*error))});
	}
}

static bool is_shown(const kind_t &kind, std::initializer_list<const char *> names, const options_t &opts)
{
	return opts.json || std::any_of(names.begin(), names.end(), [&](const char *name) {
		       return has_column(kind, opts.columns, name);
	       });
}

messages_t withheld(const sections_t &sections, enquiry_t &from, const options_t &opts)
{
	messages_t messages;
	for (const section_t &section : sections) {
		const kind_t &kind = *section.kind;
		reason_lines_t lines(kind);
		if (&kind == &DEVICES_KIND && is_shown(kind, {"dm_target"}, opts))
			add_mappings(section, from, &lines);
		if (&kind == &MOUNTS_KIND && is_shown(kind, {"total", "used", "available"}, opts))
			add_mounts(section, from, &lines);
		if (&kind == &FILESYSTEMS_KIND && !is_shown(kind, {"reason", "error"}, opts))
			add_contents(section, &lines);
		for (message_t &message : lines.messages())
			messages.push_back(std::move(message));
	}
	return messages;
}
