// Devices that are named on the command line.
#include "selection.h"

#include "diskscout_block.h"
#include "usage_error.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <memory>
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

// Links that udev knows need not be looked at; all others are followed to a node, whatever its name.
static const block_device &device_behind(const devices_t &devices, const std::string &path)
{
	struct free_t {
		void operator()(char *text) const { free(text); }
	};
	if (const block_device *known = device_of_path(devices, path))
		return *known;
	const std::unique_ptr<char, free_t> real(realpath(path.c_str(), nullptr));
	if (!real)
		throw usage_error_t(fmt::format("{}: {}", path, strerror(errno)));
	if (const block_device *known = device_of_path(devices, real.get()))
		return *known;
	struct stat node;
	if (stat(real.get(), &node) != 0)
		throw usage_error_t(fmt::format("{}: {}", path, strerror(errno)));
	if (!S_ISBLK(node.st_mode))
		throw usage_error_t(fmt::format("{} is no block device", path));
	if (const block_device *known = device_of_number(devices, node.st_rdev))
		return *known;
	throw usage_error_t(fmt::format("{} has the number {}:{}, which no device has", path,
	                                major(node.st_rdev), minor(node.st_rdev)));
}

names_t devices_behind(const std::vector<std::string> &paths, bool inverse, enquiry_t &from)
{
	const auto devices = from.block_list(CMD_GET_BLOCK_DEVICES).records<block_device>();
	const auto links = from.block_list(CMD_GET_BLOCK_LINKS).records<block_link>();
	std::vector<std::string_view> open;
	open.reserve(paths.size());
	for (const std::string &path : paths)
		open.emplace_back(device_behind(devices, path).name);
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
