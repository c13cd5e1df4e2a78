// SPDX-License-Identifier: Apache-2.0
// The readers of the system's tables, on a captured host that has nothing but the table.
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/mdstat.h"
#include "hdd/sal/src/linux/mtab.h"
#include "hdd/sal/src/linux/procblk.h"
#include "hdd/sal/src/linux/procide.h"
#include "hdd/sal/src/linux/procscsi.h"
#include "hdd/sal/src/linux/raidtab.h"

#include <memory>

namespace
{

// The counts tell the occupied slots, each of which knows its place.
template <class List> std::string wrong_list(const List &list)
{
	int last = 0;
	int occupied = 0;
	for (int slot = 0; slot < list_capacity<List>(); slot++) {
		const auto &item = list.item[slot];
		if (item.tag == 0)
			continue;
		if (item.tag != 1 || item.index != slot || item.parent != &list)
			return "place";
		last = slot + 1;
		occupied++;
	}
	return broken({
		{list.lmt == list_capacity<List>(), "lmt"},
		{list.num == last && list.num_real == occupied, "counts"},
	});
}

// A text without blanks behind it, nor what a reader cuts it at. One that fills its field may go on.
template <size_t size> bool is_cut(const char (&text)[size])
{
	const size_t length = strnlen(text, size);
	return length < size && !strpbrk(text, "#\r\n") &&
	       (length == 0 || length == size - 1 || !strchr(" \t", text[length - 1]));
}

// Nor before it.
template <size_t size> bool is_trimmed(const char (&text)[size])
{
	return is_cut(text) && text[0] != ' ' && text[0] != '\t';
}

template <class List> using Filter = std::string (*)(const list_item_t<List> &item);

// Reads the table with the filter, and looks at every item.
template <class List>
std::string check_read(int (*parse)(List *list, filter_func_t filter, void *arg), filter_func_t filter,
                       void *arg, std::initializer_list<int> documented, Filter<List> wrong_item,
                       int overflow)
{
	const auto list = std::make_unique<List>();
	memset(static_cast<void *>(list.get()), 0xa5, sizeof(List));
	const int result = parse(list.get(), filter, arg);
	std::string wrong = wrong_code(result, documented);
	if (wrong.empty())
		wrong = wrong_list(*list);
	if (wrong.empty() && result == overflow && list->num_real != list->lmt)
		wrong = "overflow of a list with room";
	for (const auto &item : live_items(*list))
		if (wrong.empty())
			wrong = wrong_item(item);
	return wrong;
}

// No result at all.
constexpr int NO_OVERFLOW = 1;

// ---- software-RAID arrays ----

// Every member stands in the slot of its role, named, and belongs to its list.
std::string wrong_members(const mdstat_subdevlist_t &members)
{
	int count = 0;
	int faulty = 0;
	for (const mdstat_subdev_t &member : live_items(members)) {
		count++;
		faulty += member.faulty;
		if (member.parent != &members || member.name[0] == '\0' || !ends(member.name))
			return "member";
	}
	return count == members.num_real && faulty == members.nr_faulty && members.num <= members.lmt
	               ? ""
	               : "counts";
}

std::string wrong_array(const mdstat_dev_t &dev)
{
	if (dev.tag != 1 || dev.subdevlist.parent)
		return "head";
	if (dev.mdlevel != 0 && !strchr("l015", dev.mdlevel))
		return "mdlevel";
	if (!ends(dev.status))
		return "status";
	if (dev.resync_type < 0 || dev.resync_type > 2 || dev.resync_progress < 0)
		return "progress";
	return wrong_members(dev.subdevlist);
}

// ---- block devices ----

std::string wrong_block_device(const procblk_dev_t &dev)
{
	return broken({
		{ends(dev.name), "name"},
		{dev.part >= 0, "part"},
		{dev.size % 2 == 0, "size"},
		{std::all_of(dev.io, dev.io + 11, [](unsigned counter) { return counter == 0; }), "io"},
	});
}

std::string wrong_block_disk(const procblk_dev_t &dev)
{
	return broken({
		{dev.part == 0, "a partition for a disk"},
		{is_between(static_cast<int>(strlen(dev.name)), 3, 4), "no name of a disk"},
	});
}

std::string wrong_block_part(const procblk_dev_t &dev)
{
	return broken({
		{strcmp(dev.name, "sda") == 0, "partition of another disk"},
		{dev.part > 0, "a disk for a partition"},
	});
}

// ---- IDE drives ----

std::string wrong_drive(const procide_dev_t &dev)
{
	return broken({
		{dev.tag == 1, "tag"},
		{strcmp(dev.name, "hda") == 0, "name"},
		{is_trimmed(dev.media) && is_trimmed(dev.model) && is_trimmed(dev.sn) && is_trimmed(dev.rev),
	         "texts"},
	});
}

// ---- SCSI devices ----

std::string wrong_scsi_device(const procscsi_dev_t &dev)
{
	return broken({
		{is_trimmed(dev.vendor) && is_trimmed(dev.model) && is_cut(dev.rev) && is_cut(dev.media),
	         "texts"},
	});
}

// ---- mounts ----

std::string wrong_mount(const mtab_mnt_t &mnt)
{
	return broken({{ends(mnt.devpath) && ends(mnt.mntpath) && ends(mnt.fsname), "texts"}});
}

std::string wrong_mount_in_dev(const mtab_mnt_t &mnt)
{
	return strncmp(mnt.devpath, "/dev/", 5) == 0 ? "" : "device elsewhere";
}

std::string wrong_mount_in_mnt(const mtab_mnt_t &mnt)
{
	return strncmp(mnt.mntpath, "/mnt/", 5) == 0 ? "" : "mounted elsewhere";
}

// ---- descriptions of arrays ----

// num is what the file declares, whatever it lists.
std::string wrong_disks(const raidtab_subdevlist_t &disks)
{
	int listed = 0;
	for (int slot = 0; slot < disks.lmt; slot++) {
		const raidtab_subdev_t &disk = disks.item[slot];
		listed += disk.tag;
		if (disk.tag != 0 && (disk.index != slot || disk.parent != &disks || !ends(disk.name)))
			return "disk";
	}
	return disks.lmt == 8 && disks.num_real == listed ? "" : "disks";
}

std::string wrong_description(const raidtab_dev_t &dev)
{
	std::string wrong = broken({
		{dev.mdminor >= -1, "mdminor"},
		{dev.mdlevel == 0 || strchr("l015", dev.mdlevel), "mdlevel"},
	});
	for (const raidtab_subdevlist_t *disks : {&dev.subdevlist_member, &dev.subdevlist_spare})
		if (wrong.empty())
			wrong = wrong_disks(*disks);
	return wrong;
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

std::string check_procblk(const char *path)
{
	static const Host host("procblk");
	host.file("proc/partitions", content_of(path));
	const Visit visit(host);
	char disk[] = "/dev/sda";
	for (const std::string &wrong :
	     {check_read(parse_procblk_devlist, nullptr, nullptr, {0, -1}, wrong_block_device, NO_OVERFLOW),
	      check_read(parse_procblk_devlist, filter_procblk_is_disk, nullptr, {0, -1}, wrong_block_disk,
	                 NO_OVERFLOW),
	      check_read(parse_procblk_devlist, filter_procblk_is_part, disk, {0, -1}, wrong_block_part,
	                 NO_OVERFLOW)})
		if (!wrong.empty())
			return wrong;
	return "";
}

static std::string next_line(std::string *text)
{
	const size_t end = std::min(text->find('\n'), text->size() - 1) + 1;
	std::string line = text->substr(0, end);
	text->erase(0, end);
	return line;
}

// The list holds the drive if and only if it can be read.
std::string check_procide(const char *path)
{
	static const Host host("procide");
	std::string text = content_of(path);
	for (const char *file : {"proc/ide/hda/media", "proc/ide/hda/model"})
		host.file(file, text.empty() ? "" : next_line(&text));
	host.file("proc/ide/hda/identify", text);
	const Visit visit(host);
	const auto dev = std::make_unique<procide_dev_t>();
	memset(static_cast<void *>(dev.get()), 0xa5, sizeof *dev);
	const int result = parse_procide_dev(dev.get(), nullptr, nullptr, "hda");
	const auto list = std::make_unique<procide_devlist_t>();
	const int of_list = parse_procide_devlist(list.get(), nullptr, nullptr);
	if (result != of_list || list->num_real != (result == 0 ? 1 : 0))
		return "the list";
	if (result == 0)
		return wrong_drive(*dev);
	return is_zero(*dev) ? wrong_code(result, {-1}) : "a failure that left something";
}

std::string check_procscsi(const char *path)
{
	static const Host host("procscsi");
	host.file("proc/scsi/scsi", content_of(path));
	const Visit visit(host);
	return check_read(parse_procscsi_devlist, nullptr, nullptr, {0, -1}, wrong_scsi_device, NO_OVERFLOW);
}

std::string check_mtab(const char *path)
{
	static const Host host("mtab");
	host.file("etc/mtab", content_of(path));
	const Visit visit(host);
	for (const std::string &wrong :
	     {check_read(parse_mtab_mntlist, nullptr, nullptr, {0, -2}, wrong_mount, -2),
	      check_read(parse_mtab_mntlist, filter_mtab_mnt_in_dev, nullptr, {0, -2}, wrong_mount_in_dev,
	                 -2),
	      check_read(parse_mtab_mntlist, filter_mtab_mnt_in_mnt, nullptr, {0, -2}, wrong_mount_in_mnt,
	                 -2)})
		if (!wrong.empty())
			return wrong;
	return "";
}

// A bad slot ends the process with -1; what was read until then nobody sees.
std::string check_raidtab(const char *path)
{
	static const Host host("raidtab");
	host.file("proc/raidtab", content_of(path));
	const Visit visit(host);
	const auto list = std::make_unique<raidtab_devlist_t>();
	int result = 0;
	int status = 0;
	if (ends_process(
		    [&] { result = read_raidtab_devlist("/proc/raidtab", list.get(), nullptr, nullptr); },
		    &status))
		return status == -1 ? "" : "status " + std::to_string(status);
	std::string wrong = wrong_code(result, {0, -1});
	if (wrong.empty())
		wrong = wrong_list(*list);
	if (wrong.empty() && result == -1 && list->num_real != 16)
		wrong = "a failure without a reason";
	for (const raidtab_dev_t &dev : live_items(*list))
		if (wrong.empty())
			wrong = wrong_description(dev);
	return wrong;
}
