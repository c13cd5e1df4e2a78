// Disks behind a RAID controller.
#include "raid.h"

#include <climits>

using raid_disk = HWRAID_DISK_LIST;

// The record's numbers are one less than the names of KESTREL_HWRAID_DSK_TYPE say: a disk is 0.
static constexpr coded_word device_types[] = {
	{KESTREL_HWRAID_DSK_TYPE_UNKNOWN - 1, "unknown"},
	{KESTREL_HWRAID_DSK_TYPE_DISK - 1, "disk"},
	{KESTREL_HWRAID_DSK_TYPE_SEQ - 1, "tape"},
	{KESTREL_HWRAID_DSK_TYPE_PRT - 1, "printer"},
	{KESTREL_HWRAID_DSK_TYPE_PROCESSOR - 1, "processor"},
	{KESTREL_HWRAID_DSK_TYPE_WRITEONCE - 1, "write once"},
	{KESTREL_HWRAID_DSK_TYPE_CDROM - 1, "CD-ROM"},
	{KESTREL_HWRAID_DSK_TYPE_SCANNER - 1, "scanner"},
	{KESTREL_HWRAID_DSK_TYPE_OPTICAL - 1, "optical"},
	{KESTREL_HWRAID_DSK_TYPE_MCHANGER - 1, "media changer"},
	{KESTREL_HWRAID_DSK_TYPE_NETWORK - 1, "network"},
};

static constexpr coded_word usages[] = {
	{KESTREL_HWRAID_DSK_USAGE_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_DSK_USAGE_INITED, "initialized"},
	{KESTREL_HWRAID_DSK_USAGE_UNINIT, "not initialized"},
	{KESTREL_HWRAID_DSK_USAGE_DETACHED, "detached"},
	{KESTREL_HWRAID_DSK_USAGE_DOS, "DOS"},
	{KESTREL_HWRAID_DSK_USAGE_OFFLINE, "offline"},
	{KESTREL_HWRAID_DSK_USAGE_UNOWNED, "unowned"},
};

static constexpr coded_word shares[] = {
	{KESTREL_HWRAID_DSK_SHARED_TYPE_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_DSK_SHARED_TYPE_NO_SHARED, "no"},
	{KESTREL_HWRAID_DSK_SHARED_TYPE_YES_SHARED, "yes"},
};

// Larger block counts arrive as the largest that the plug-in knows.
static std::string size_of(const raid_disk &d)
{
	if (d.nBlocks < 0 || d.nBytesPerBlock < 0 || d.nBlocks > INT_MAX)
		return "-";
	const std::string size = human_size_if_known(static_cast<std::uint64_t>(d.nBlocks) *
	                                             static_cast<std::uint64_t>(d.nBytesPerBlock));
	return d.nBlocks == INT_MAX ? "at least " + size : size;
}

static const column<raid_disk> columns[] = {
	{"ADDRESS", align::left, [](const raid_disk &d) { return address(d.nPosition); }},
	{"TYPE", align::left, [](const raid_disk &d) { return word_of(d.DeviceType, device_types); }},
	{"SIZE", align::right, size_of},
	{"VENDOR", align::left, [](const raid_disk &d) { return shown(d.szVendor); }},
	{"MODEL", align::left, [](const raid_disk &d) { return shown(d.szModel); }},
	{"USAGE", align::left, [](const raid_disk &d) { return word_of(d.Usage, usages); }},
	{"SHARED", align::left, [](const raid_disk &d) { return word_of(d.Shared, shares); }},
	{"RATE", align::right, [](const raid_disk &d) { return std::to_string(d.nRate); }},
};

static ordered_json object(const raid_disk &d)
{
	return {
		{"address", json_address(d.nPosition)},
		{"vendor", json_text(d.szVendor)},
		{"model", json_text(d.szModel)},
		{"device_type", d.DeviceType},
		{"device_type_word", json_word(d.DeviceType, device_types)},
		{"blocks", d.nBlocks},
		{"bytes_per_block", d.nBytesPerBlock},
		{"usage", d.Usage},
		{"usage_word", json_word(d.Usage, usages)},
		{"shared", d.Shared},
		{"shared_word", json_word(d.Shared, shares)},
		{"rate", d.nRate},
	};
}

static answer ask(enquiry &from)
{
	return answer_of(from.raid_disks(), columns, object);
}

const kind raid_disks_kind = {
	"raid-disks", "RAID DISKS", "RAID disk", "The controller has no disk.", scope::controller, ask,
};
