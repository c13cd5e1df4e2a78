// One array of /proc/mdstat: the first three lines of the file, cut as the reader cuts them.
#include "parsers.h"

#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/mdstat.h"

#include <algorithm>
#include <memory>
#include <string.h>

namespace
{

bool is_zero(const mdstat_dev_t &dev)
{
	const auto *bytes = reinterpret_cast<const char *>(&dev);
	return std::all_of(bytes, bytes + sizeof dev, [](char byte) { return byte == 0; });
}

// Every member stands in the slot of its role, named, and belongs to its list.
std::string wrong_members(const mdstat_subdevlist_t &members)
{
	int count = 0;
	int faulty = 0;
	for (const mdstat_subdev_t &member : live_items(members)) {
		count++;
		faulty += member.faulty;
		if (member.parent != &members || member.name[0] == '\0' ||
		    strnlen(member.name, FNAME_SIZE) == FNAME_SIZE)
			return "member";
	}
	return count == members.num_real && faulty == members.nr_faulty && members.num <= members.lmt
	               ? ""
	               : "counts";
}

std::string wrong_array(const mdstat_dev_t &dev)
{
	if (dev.tag != 1 || dev.subdevlist.parent != &dev)
		return "head";
	if (dev.mdlevel != 0 && !strchr("l015", dev.mdlevel))
		return "mdlevel";
	if (strnlen(dev.status, STR_SIZE) == STR_SIZE)
		return "status";
	if (dev.resync_type < 0 || dev.resync_type > 2 || dev.resync_progress < 0)
		return "progress";
	return wrong_members(dev.subdevlist);
}

} // namespace

std::string check_mdstat(const char *path)
{
	line_t lines[3] = {};
	const Stream file(fsopen_ro(path));
	for (char *line : {lines[0], lines[1], lines[2]})
		if (file)
			fsread_line(file.get(), line);

	const auto dev = std::make_unique<mdstat_dev_t>();
	const int result = parse_mdstat_dev(dev.get(), nullptr, nullptr, lines);
	if (result == 0)
		return wrong_array(*dev);
	if (result != -1)
		return "result " + std::to_string(result);
	return is_zero(*dev) ? "" : "a failure that left something";
}
