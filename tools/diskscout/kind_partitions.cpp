// Partitions.
#include "kinds.h"
#include "text.h"

#include <fmt/format.h>

using partition_t = STORAGE_PART_LIST;

// The kernel numbers partitions from 1, the record counts them from 0.
static std::string node_of(const partition_t &p)
{
	const std::string disk = shown(p.szDiskDeviceName);
	return disk == "-" ? disk : disk + fmt::to_string(std::uint64_t{p.nPartIndex} + 1);
}

// 0 bytes used is an answer, but only of a mounted file system.
static std::string used_space_of(const partition_t &p)
{
	return p.nTotalSpace ? human_size(p.nUsedSpace) : human_size_if_known(p.nUsedSpace);
}

// The start is counted in sectors, as the partitioning programs do, so that both can be compared.
static std::string first_sector_of(const partition_t &p)
{
	return fmt::to_string(p.nStart / 512);
}

static const column_t<partition_t> COLUMNS[] = {
	{"DEVICE", align_t::LEFT, node_of},
	{"TYPE", align_t::LEFT, [](const partition_t &p) { return shown(p.szType); }},
	{"BOOT", align_t::LEFT, [](const partition_t &p) { return mark(p.bActive); }},
	{"FIRST SECTOR", align_t::RIGHT, first_sector_of},
	{"SIZE", align_t::RIGHT, [](const partition_t &p) { return human_size_if_known(p.nSize); }},
	{"FILE SYSTEM", align_t::LEFT, [](const partition_t &p) { return shown(p.szFileSystem); }},
	{"MOUNT POINTS", align_t::LEFT, [](const partition_t &p) { return shown(p.szMountPoint); }},
	{"TOTAL", align_t::RIGHT, [](const partition_t &p) { return human_size_if_known(p.nTotalSpace); }},
	{"USED", align_t::RIGHT, used_space_of},
	{"SYSTEM", align_t::LEFT, [](const partition_t &p) { return mark(p.bUsedBySystem); }},
};

static ordered_json_t object(const partition_t &p)
{
	return {
		{"disk_device_name", json_text(p.szDiskDeviceName)},
		{"part_index", p.nPartIndex},
		{"start", p.nStart},
		{"size", p.nSize},
		{"total_sectors", p.nTotalSectors},
		{"type", json_text(p.szType)},
		{"file_system", json_text(p.szFileSystem)},
		{"mount_point", json_text(p.szMountPoint)},
		{"label", json_text(p.szLabel)},
		{"total_space", p.nTotalSpace},
		{"used_space", p.nUsedSpace},
		{"used_by_system", p.bUsedBySystem != 0},
		{"active", p.bActive != 0},
		// A char is signed here: 0x80 would come out as -128.
		{"boot_byte", static_cast<unsigned char>(p.bActive)},
	};
}

static answer_t ask(enquiry_t &from)
{
	return answer_of(from.ask(CMD_GET_PARTITIONS), COLUMNS, object);
}

const kind_t PARTITIONS_KIND = {
	"partitions",  "PARTITIONS", "partition", "No partition was found on the disks of this host.",
	scope_t::HOST, ask,
};
