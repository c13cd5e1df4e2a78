// SPDX-License-Identifier: Apache-2.0
// A raidtab file, one block an array; '#' starts a comment:
//
//   raiddev /dev/md0
//       raid-level      5
//       nr-raid-disks   2
//       nr-spare-disks  1
//       device          /dev/sda1
//       raid-disk       0
//       device          /dev/sdb1
//       spare-disk      0
//
// A keyword applies to the array declared last; a disk keyword takes the path of the "device" line before it.
#include "hdd/sal/src/linux/raidtab.h"

#include "base/text.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"

#include <stdlib.h>

// What the lines read so far have left open.
struct raidtab_state_t {
	raidtab_devlist_t *list;
	raidtab_dev_t *array; // declared last, or null
	line_t device;        // path waiting for its disk keyword
};

// compat: a bad disk slot ends the whole process, so that a description that contradicts itself is never
// shown as if it were true; whoever calls the reader ends with it. Service staff know the places by their
// numbers, which are those of the first release.
static void bad_slot(int place)
{
	fprintf(stderr, "error: |%s %d|\n", "hdd/exe/../sal/src/1/../linux/raidtab", place);
	exit(-1);
}

struct slot_places_t {
	int out_of_range;
	int taken;
};

static void take_disk(raidtab_state_t *state, raidtab_subdevlist_t *disks, std::string_view value, int faulty,
                      slot_places_t places)
{
	int64_t number;
	if (str_next_int(&value, &number)) {
		if (number < 0 || number >= disks->lmt)
			bad_slot(places.out_of_range);
		raidtab_subdev_t &disk = disks->item[number];
		if (disk.tag != 0)
			bad_slot(places.taken);
		disk.tag = 1;
		disk.index = static_cast<int>(number);
		disk.parent = disks;
		str_copy(disk.name, state->device);
		disk.faulty = faulty;
		disks->num_real++;
	}
	b0_line(state->device);
}

static void take_raid_disk(raidtab_state_t *state, std::string_view value)
{
	take_disk(state, &state->array->subdevlist_member, value, 0, {128, 131});
}

static void take_failed_disk(raidtab_state_t *state, std::string_view value)
{
	take_disk(state, &state->array->subdevlist_member, value, 1, {144, 147});
}

static void take_spare_disk(raidtab_state_t *state, std::string_view value)
{
	take_disk(state, &state->array->subdevlist_spare, value, 0, {160, 163});
}

static void take_device(raidtab_state_t *state, std::string_view value)
{
	str_copy(state->device, value);
}

static void take_level(raidtab_state_t *state, std::string_view value)
{
	if (str_begins(value, "linear"))
		state->array->mdlevel = 'l';
	else if (str_begins(value, "0") || str_begins(value, "1") || str_begins(value, "5"))
		state->array->mdlevel = value[0];
}

static void take_count(raidtab_subdevlist_t *disks, std::string_view value)
{
	take_decimal(&value, &disks->num);
}

static void take_raid_count(raidtab_state_t *state, std::string_view value)
{
	take_count(&state->array->subdevlist_member, value);
}

static void take_spare_count(raidtab_state_t *state, std::string_view value)
{
	take_count(&state->array->subdevlist_spare, value);
}

static int take_array(raidtab_state_t *state, std::string_view value)
{
	raidtab_devlist_t *list = state->list;
	if (list->num == list->lmt)
		return -1;
	state->array = &list->item[list->num];
	state->array->tag = 1;
	state->array->index = list->num;
	state->array->parent = list;
	state->array->mdminor = split_devname(value).number;
	list->num++;
	list->num_real++;
	return 0;
}

static constexpr std::string_view ARRAY_KEYWORD = "raiddev";

// Matched by prefix, in this order.
static constexpr struct {
	std::string_view keyword;
	void (*take)(raidtab_state_t *state, std::string_view value);
} KEYWORDS[] = {
	{"raid-level", take_level},           {"nr-raid-disks", take_raid_count},
	{"nr-spare-disks", take_spare_count}, {"device", take_device},
	{"raid-disk", take_raid_disk},        {"failed-disk", take_failed_disk},
	{"spare-disk", take_spare_disk},
};

static int take_line(raidtab_state_t *state, std::string_view line)
{
	std::string_view rest = line;
	std::string_view value;
	str_next_word(&rest, &value);
	str_next_word(&rest, &value);

	if (str_begins(line, ARRAY_KEYWORD))
		return take_array(state, value);
	for (const auto &row : KEYWORDS) {
		if (!str_begins(line, row.keyword))
			continue;
		if (state->array)
			row.take(state, value);
		break;
	}
	return 0;
}

static void clear_devlist(raidtab_devlist_t *list)
{
	list_clear(list);
	for (raidtab_dev_t &array : list->item) {
		array.subdevlist_member.lmt = list_capacity<raidtab_subdevlist_t>();
		array.subdevlist_spare.lmt = list_capacity<raidtab_subdevlist_t>();
	}
}

int read_raidtab_devlist(const char *path, raidtab_devlist_t *list, filter_func_t, void *)
{
	clear_devlist(list);
	const Stream file(fsopen_ro(path));
	if (!file)
		return -1;

	raidtab_state_t state = {list, nullptr, ""};
	line_t line;
	while (fsread_line(file.get(), line) == 0)
		if (take_line(&state, str_trim(line)) != 0)
			return -1;
	return file.failed() ? -1 : 0;
}

static void dump_disks(const char *kind, const raidtab_subdevlist_t &disks)
{
	fprintf(stderr, "    %s(num=%d,num_real=%d):", kind, disks.num, disks.num_real);
	for (const raidtab_subdev_t &disk : live_items(disks))
		fprintf(stderr, " %s[%d]%s", disk.name, static_cast<int>(&disk - disks.item),
		        disk.faulty ? "(F)" : "");
	fputs("\n", stderr);
}

void display_raidtab_devlist(const raidtab_devlist_t *list)
{
	dump_list_head(list);
	for (const raidtab_dev_t &array : live_items(*list)) {
		dump_item_head(array);
		fprintf(stderr, "(md%d) level=%c original=%d (F %s)\n", array.mdminor, array.mdlevel,
		        array.nr_original, array.with_faulty ? "with" : "without");
		dump_disks("member", array.subdevlist_member);
		dump_disks("spare ", array.subdevlist_spare);
	}
}
