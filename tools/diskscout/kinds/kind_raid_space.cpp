// Free areas of the disks behind a RAID controller. The plug-in is asked disk by disk.
#include "raid.h"

#include <deque>

// An area's record does not tell its disk.
struct free_area_t {
	int disk;
	HWRAID_SPACE_LIST area;
};

template <auto Member> static void area_number(const row_t &row, sink_t &to)
{
	to.number(record_of<free_area_t>(row).area.*Member);
}

template <auto Member> static void area_low32(const row_t &row, sink_t &to)
{
	to.large(static_cast<std::uint32_t>(record_of<free_area_t>(row).area.*Member));
}

template <auto Member> static std::string area_cell(const row_t &row)
{
	return size_modulo_4_gib(record_of<free_area_t>(row).area.*Member);
}

template <auto Member> static constexpr field_t old_area(const char *key)
{
	return {key, "", shape_t::NUMBER, OLD, "", area_number<Member>};
}

template <auto Member>
static constexpr field_t low32_of_area(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::BYTES, NEW, what, area_low32<Member>, {}, area_cell<Member>};
}

static constexpr field_t FIELDS[] = {
	address_field<&free_area_t::disk>("address", "DISK",
                                          "the disk: channel, SCSI ID and LUN at the controller"),
	old_area<&HWRAID_SPACE_LIST::nOffset>("offset"),
	old_area<&HWRAID_SPACE_LIST::nFreeSpace>("free_space"),
	{"offset", "OFFSET", shape_t::BYTES, NEW | MAY_LACK,
         "bytes; null: the query tells no more than offset_low32", put_nothing},
	low32_of_area<&HWRAID_SPACE_LIST::nOffset>(
		"offset_low32", "OFFSET MOD 4 GIB",
		"offset without whole multiples of 4 GiB, as the record holds it"),
	{"free_space", "FREE", shape_t::BYTES, NEW | MAY_LACK,
         "bytes; null: the query tells no more than free_space_low32", put_nothing},
	low32_of_area<&HWRAID_SPACE_LIST::nFreeSpace>(
		"free_space_low32", "FREE MOD 4 GIB",
		"free_space without whole multiples of 4 GiB, as the record holds it"),
};

// The disk's address as it lies in memory, then the controller's name.
static std::string argument_for(int disk, const std::string &controller)
{
	return std::string(reinterpret_cast<const char *>(&disk), sizeof disk) + controller;
}

static answer_t ask(enquiry_t &from)
{
	const std::string controller = from.controller().value_or("");
	const item_list_t &disks = from.list_of_controller(CMD_GET_RAID_DISKS);
	const auto areas = std::make_shared<std::deque<free_area_t>>();
	answer_t answer;
	answer.records = areas;
	answer.failed = disks.failed();
	answer.where = disks.failed() ? " at the list of disks" : "";
	for (const HWRAID_DISK_LIST *disk : disks.records<HWRAID_DISK_LIST>()) {
		const item_list_t list =
			from.ask(CMD_GET_RAID_SPACE, argument_for(disk->nPosition, controller));
		if (list.failed()) {
			answer.where += (answer.failed ? ", " : " for disk ") + address(disk->nPosition);
			answer.failed = true;
		}
		for (const HWRAID_SPACE_LIST *area : list.records<HWRAID_SPACE_LIST>())
			answer.rows.push_back(
				{&areas->emplace_back(free_area_t{disk->nPosition, *area}), &from});
	}
	return answer;
}

const kind_t RAID_SPACE_KIND = {
	"raid_space",
	"raid-space",
	"RAID SPACE",
	"RAID space",
	"The disks of the controller have no free area.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"address,offset_low32,free_space_low32",
	nullptr,
	ask,
	"MOD 4 GIB leaves out whole multiples of 4 GiB; raid-disks and raid-partitions show sizes in full.",
};
