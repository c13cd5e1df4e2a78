// Partitions.
#include "kinds.h"
#include "text.h"

#include <fmt/format.h>

using partition = STORAGE_PART_LIST;

// The kernel numbers partitions from 1, the record counts them from 0.
static std::string node_of(const partition &p)
{
	const std::string disk = shown(p.szDiskDeviceName);
	return disk == "-" ? disk : disk + fmt::to_string(std::uint64_t{p.nPartIndex} + 1);
}

// 0 bytes used is an answer, but only of a mounted file system.
static std::string used_space_of(const partition &p)
{
	return p.nTotalSpace ? human_size(p.nUsedSpace) : human_size_if_known(p.nUsedSpace);
}

// The start is counted in sectors, as the partitioning programs do, so that both can be compared.
static std::string first_sector_of(const partition &p)
{
	return fmt::to_string(p.nStart / 512);
}

static const column<partition> columns[] = {
	{"DEVICE", align::left, node_of},
	{"TYPE", align::left, [](const partition &p) { return shown(p.szType); }},
	{"BOOT", align::left, [](const partition &p) { return mark(p.bActive); }},
	{"FIRST SECTOR", align::right, first_sector_of},
	{"SIZE", align::right, [](const partition &p) { return human_size_if_known(p.nSize); }},
	{"FILE SYSTEM", align::left, [](const partition &p) { return shown(p.szFileSystem); }},
	{"MOUNT POINTS", align::left, [](const partition &p) { return shown(p.szMountPoint); }},
	{"TOTAL", align::right, [](const partition &p) { return human_size_if_known(p.nTotalSpace); }},
	{"USED", align::right, used_space_of},
	{"SYSTEM", align::left, [](const partition &p) { return mark(p.bUsedBySystem); }},
};

static ordered_json object(const partition &p)
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

static answer ask(enquiry &from)
{
	return answer_of(from.ask(CMD_GET_PARTITIONS), columns, object);
}

const kind partitions_kind = {
	"partitions", "PARTITIONS", "partition", "No partition was found on the disks of this host.",
	scope::host,  ask,
};
