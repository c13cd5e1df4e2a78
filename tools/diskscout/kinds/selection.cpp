// SPDX-License-Identifier: Apache-2.0
// Devices that are named on the command line.
#include "selection.h"

#include "diskscout_block.h"
#include "usage_error.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

using devices_t = std::vector<const block_device *>;

static bool is_led_to_by(const block_device &device, std::string_view path)
{
	if (device.node && device.node == path)
		return true;
	for (const block_text *link = device.links; link; link = link->next) {
		if (link->text == path)
			return true;
	}
	return false;
}

static const block_device *device_of_path(const devices_t &devices, std::string_view path)
{
	for (const block_device *device : devices) {
		if (is_led_to_by(*device, path))
			return device;
	}
	return nullptr;
}

static const block_device *device_of_number(const devices_t &devices, dev_t number)
{
	for (const block_device *device : devices) {
		if (device->major == static_cast<int>(major(number)) &&
		    device->minor == static_cast<int>(minor(number)))
			return device;
	}
	return nullptr;
}

// Where a path leads, and what is there.
struct target_t {
	dev_t number;
	bool is_block;
	char path[PATH_MAX];
};

static void look_at(const std::string &path, const worker_link_t &to)
{
	target_t target = {};
	struct stat node;
	if (!realpath(path.c_str(), target.path) || stat(target.path, &node) != 0)
		return to.failure(strerror(errno));
	target.number = node.st_rdev;
	target.is_block = S_ISBLK(node.st_mode);
	to.result(&target, sizeof target);
}

// Links that udev knows need not be looked at; all others are followed to a node, whatever its name.
static const block_device &device_behind(const devices_t &devices, const std::string &path, enquiry_t &from)
{
	if (const block_device *known = device_of_path(devices, path))
		return *known;
	const worked_t worked = from.work("the path", enquiry_t::place_t::HERE,
	                                  [&](const worker_link_t &to) { look_at(path, to); });
	if (!worked.is_done)
		throw usage_error_t(fmt::format("{}: {}", path, worked.failure));
	target_t target;
	memcpy(&target, worked.result(), sizeof target);
	if (const block_device *known = device_of_path(devices, target.path))
		return *known;
	if (!target.is_block)
		throw usage_error_t(fmt::format("{} is no block device", path));
	if (const block_device *known = device_of_number(devices, target.number))
		return *known;
	throw usage_error_t(fmt::format("{} has the number {}:{}, which no device has", path,
	                                major(target.number), minor(target.number)));
}

names_t devices_behind(const std::vector<std::string> &paths, bool inverse, enquiry_t &from)
{
	const auto devices = from.block_list(CMD_GET_BLOCK_DEVICES).records<block_device>();
	const auto links = from.block_list(CMD_GET_BLOCK_LINKS).records<block_link>();
	std::vector<std::string_view> open;
	open.reserve(paths.size());
	for (const std::string &path : paths)
		open.emplace_back(device_behind(devices, path, from).name);
	std::multimap<std::string_view, std::string_view> next;
	for (const block_link *link : links)
		next.emplace(inverse ? link->upper : link->lower, inverse ? link->lower : link->upper);
	names_t names;
	while (!open.empty()) {
		const std::string_view name = open.back();
		open.pop_back();
		if (!names.insert(name).second)
			continue;
		const auto [first, last] = next.equal_range(name);
		for (auto other = first; other != last; ++other)
			open.push_back(other->second);
	}
	return names;
}
