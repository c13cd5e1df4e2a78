// The partitions of the inventory: the entries of a disk's tables, joined to the volumes on them.
#include "hdd/exe/linux.h"

#include "hdd/sal/src/0/list.h"
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
	b0(&join->part, sizeof join->part);
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

struct vol_joiner_t {
	part_join_t *join;
	int num;
};

static int join_volume(const exe_vol_t *vol, void *context)
{
	auto *to = static_cast<vol_joiner_t *>(context);
	joined_vol_t *joined = &to->join->vols[to->num++];
	join_slot(joined, *vol);
	joined->live = true;
	joined->devpath = store_text(to->join, joined->devpath);
	joined->mntpath = store_text(to->join, joined->mntpath);
	return 0;
}

int begin_part_join(part_join_t *join)
{
	b0(&join->part, sizeof join->part);
	b0(join->vols, sizeof join->vols);
	join->texts_used = 0;
	vol_joiner_t to = {join, 0};
	return walk_exe_vols(join_volume, &to);
}

// Whether a mount at the other place hides one at this: on the same point, and deliberately beneath it as
// well, so that a partition at /usr shows no space once /usr/local is mounted.
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

static void join_volumes(part_join_t *join, std::string_view devpath)
{
	exe_part_t *part = &join->part;
	for (int i = 0; i < join->on_disk_num; i++) {
		const joined_vol_t &vol = *join->on_disk[i];
		if (vol.devpath != devpath)
			continue;
		if (vol.sys)
			part->sys = 1;
		if (part->mntpath[0] != '\0')
			str_append(part->mntpath, ";");
		str_append(part->mntpath, vol.mntpath);
		if (is_hidden(*join, &vol))
			continue;
		part->volid = vol.volid;
		part->volspace = vol.volspace;
	}
}

// Fills what the entry tells; the record holds the disk's path and what the partition before has left.
static void assemble_part(part_join_t *join, const part_t &entry)
{
	exe_part_t *part = &join->part;
	part->part_index = entry.part_index;
	part->type = entry.type;
	part->boot = entry.active;
	part->start = entry.start;
	part->size = entry.size;
	part->volid = {};
	part->volspace = {};
	part->sys = 0;
	str_refill(part->mntpath, "");
	str_refill(part->devpath, part->disk);
	char digits[12];
	const char *end = std::to_chars(digits, digits + sizeof digits, entry.part_index + 1).ptr;
	str_append(part->devpath, std::string_view(digits, static_cast<size_t>(end - digits)));
	join_volumes(join, part->devpath);
}

int walk_exe_parts(const char *disk, part_join_t *join, int (*take)(const exe_part_t *part, void *context),
                   void *context)
{
	CLEARED_BY_CALLEE partlist_t entries;
	if (read_disk_partlist(disk, &entries) != 0)
		return -1;

	str_refill(join->part.disk, disk);
	select_volumes(join, disk);
	for (const part_t &entry : live_items(entries)) {
		assemble_part(join, entry);
		if (take(&join->part, context) != 0)
			return -1;
	}
	return 0;
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
	collector_t<exe_partlist_t> to = {list, filter, arg};
	return walk_exe_parts(disk, &join, collect<exe_partlist_t>, &to);
}
