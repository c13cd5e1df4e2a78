// Free areas of the disks behind a RAID controller. The plug-in is asked disk by disk.
#include "raid.h"

// An area's record does not tell its disk.
struct free_area_t {
	int disk;
	HWRAID_SPACE_LIST area;
};

static const column_t<free_area_t> COLUMNS[] = {
	{"DISK", align_t::LEFT, [](const free_area_t &f) { return address(f.disk); }},
	{"OFFSET MOD 4 GIB", align_t::RIGHT,
         [](const free_area_t &f) { return size_modulo_4_gib(f.area.nOffset); }},
	{"FREE MOD 4 GIB", align_t::RIGHT,
         [](const free_area_t &f) { return size_modulo_4_gib(f.area.nFreeSpace); }},
};

static ordered_json_t object(const free_area_t &f)
{
	return {
		{"address", json_address(f.disk)},
		{"offset", f.area.nOffset},
		{"free_space", f.area.nFreeSpace},
	};
}

// The disk's address as it lies in memory, then the controller's name.
static std::string argument_for(int disk, const std::string &controller)
{
	return std::string(reinterpret_cast<const char *>(&disk), sizeof disk) + controller;
}

static answer_t ask(enquiry_t &from)
{
	const std::string controller = from.controller().value_or("");
	std::vector<free_area_t> areas;
	std::string where = from.raid_disks().failed() ? " at the list of disks" : "";
	bool failed = !where.empty();
	for (const HWRAID_DISK_LIST &disk : from.raid_disks().records<HWRAID_DISK_LIST>()) {
		const item_list_t list =
			from.ask(CMD_GET_RAID_SPACE, argument_for(disk.nPosition, controller));
		if (list.failed()) {
			where += (failed ? ", " : " for disk ") + address(disk.nPosition);
			failed = true;
		}
		for (const HWRAID_SPACE_LIST &area : list.records<HWRAID_SPACE_LIST>())
			areas.push_back({disk.nPosition, area});
	}
	return {failed, table_of(areas, COLUMNS), array_of(areas, object), where};
}

const kind_t RAID_SPACE_KIND = {
	"raid-space",
	"RAID SPACE",
	"RAID space",
	"The disks of the controller have no free area.",
	scope_t::CONTROLLER,
	ask,
	"MOD 4 GIB leaves out whole multiples of 4 GiB; raid-disks and raid-partitions show sizes in full.",
};
