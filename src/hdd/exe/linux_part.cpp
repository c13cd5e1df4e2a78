// SPDX-License-Identifier: Apache-2.0
// The partitions of the inventory: the entries of a disk's tables, joined to the volumes on them.
#include "hdd/exe/linux.h"

#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/parttab.h"

#include <charconv>
#include <iterator>
#include <string.h>

static void join_slot(joined_vol_t *joined, const exe_vol_t &vol)
{
	joined->live = vol.tag != 0;
	joined->devpath = vol.devpath;
	joined->mntpath = vol.mntpath;
	joined->volid = vol.volid;
	joined->volspace = vol.volspace;
	joined->sys = vol.sys;
}

void begin_part_join(part_join_t *join, const exe_vollist_t &vols)
{
	// Free slots too: their mount points count.
	for (int slot = 0; slot < list_capacity<exe_vollist_t>(); slot++)
		join_slot(&join->vols[slot], vols.item[slot]);
}

// Takes room for a text off the join's store.
static std::string_view store_text(part_join_t *join, std::string_view text)
{
	char *stored = join->texts + join->texts_used;
	str_copy(stored, text.size() + 1, text);
	join->texts_used += text.size() + 1;
	return std::string_view(stored, text.size());
}

int begin_part_join(part_join_t *join)
{
	b0(join->vols, sizeof join->vols);
	join->texts_used = 0;
	ExeVols vols;
	exe_vol_t vol = {};
	for (int num = 0; vols.next(&vol); num++) {
		joined_vol_t *joined = &join->vols[num];
		join_slot(joined, vol);
		joined->live = true;
		joined->devpath = store_text(join, joined->devpath);
		joined->mntpath = store_text(join, joined->mntpath);
	}
	return vols.result();
}

// Whether a mount at the other place hides one at this: on the same point.
// compat: beneath it as well, so that a partition at /usr shows no space once /usr/local is mounted.
static bool hides(std::string_view other, std::string_view mntpath)
{
	return str_begins(other, mntpath) &&
	       (other.size() == mntpath.size() || other[mntpath.size()] == *PDCHAR);
}

static bool is_hidden(const part_join_t &join, const joined_vol_t *vol)
{
	for (const joined_vol_t *later = vol + 1; later != std::end(join.vols); later++)
		if (hides(later->mntpath, vol->mntpath))
			return true;
	return false;
}

static void select_volumes(part_join_t *join, std::string_view disk)
{
	join->on_disk_num = 0;
	for (const joined_vol_t &vol : join->vols)
		if (vol.live && str_begins(vol.devpath, disk))
			join->on_disk[join->on_disk_num++] = &vol;
}

static void join_volumes(const part_join_t &join, exe_part_t *part)
{
	const std::string_view devpath = part->devpath;
	for (int i = 0; i < join.on_disk_num; i++) {
		const joined_vol_t &vol = *join.on_disk[i];
		if (vol.devpath != devpath)
			continue;
		if (vol.sys)
			part->sys = 1;
		if (part->mntpath[0] != '\0')
			str_append(part->mntpath, ";");
		str_append(part->mntpath, vol.mntpath);
		if (is_hidden(join, &vol))
			continue;
		part->volid = vol.volid;
		part->volspace = vol.volspace;
	}
}

// Fills what the entry tells; the record holds what the partition before has left.
static void assemble_part(exe_part_t *part, const char *disk, const part_t &entry)
{
	part->part_index = entry.part_index;
	part->type = entry.type;
	part->boot = entry.active;
	part->start = entry.start;
	part->size = entry.size;
	part->volid = {};
	part->volspace = {};
	part->sys = 0;
	str_refill(part->mntpath, "");
	str_refill(part->disk, disk);
	str_refill(part->devpath, part->disk);
	char digits[12];
	const char *end = std::to_chars(digits, digits + sizeof digits, entry.part_index + 1).ptr;
	str_append(part->devpath, std::string_view(digits, static_cast<size_t>(end - digits)));
}

// cppcheck-suppress uninitMemberVar ; reading clears the entries
ExeParts::ExeParts(const char *disk, part_join_t *join)
    : disk_(disk), join_(join), result_(read_disk_partlist(disk, &entries_))
{
	select_volumes(join, disk);
}

bool ExeParts::next(exe_part_t *part)
{
	// The tables' entries stand together, from the first slot on.
	if (slot_ == entries_.num)
		return false;
	assemble_part(part, disk_, entries_.item[slot_++]);
	join_volumes(*join_, part);
	return true;
}

int get_exe_partlist_on_disk(const char *disk, exe_partlist_t *list, filter_func_t filter, void *arg,
                             const exe_vollist_t *vols)
{
	list_clear(list);
	CLEARED_BY_CALLEE part_join_t join;
	if (vols)
		begin_part_join(&join, *vols);
	else if (begin_part_join(&join) != 0)
		return -1;
	CLEARED_BY_CALLEE ExeParts parts(disk, &join);
	return list_fill(list, &parts, filter, arg);
}
