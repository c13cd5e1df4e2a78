// Disks behind a RAID controller.
#include "raid.h"

#include <climits>

using raid_disk_t = HWRAID_DISK_LIST;

// The record's numbers are one less than the names of KESTREL_HWRAID_DSK_TYPE say: a disk is 0.
static constexpr coded_word_t DEVICE_TYPES[] = {
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

static constexpr coded_word_t USAGES[] = {
	{KESTREL_HWRAID_DSK_USAGE_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_DSK_USAGE_INITED, "initialized"},
	{KESTREL_HWRAID_DSK_USAGE_UNINIT, "not initialized"},
	{KESTREL_HWRAID_DSK_USAGE_DETACHED, "detached"},
	{KESTREL_HWRAID_DSK_USAGE_DOS, "DOS"},
	{KESTREL_HWRAID_DSK_USAGE_OFFLINE, "offline"},
	{KESTREL_HWRAID_DSK_USAGE_UNOWNED, "unowned"},
};

static constexpr coded_word_t SHARES[] = {
	{KESTREL_HWRAID_DSK_SHARED_TYPE_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_DSK_SHARED_TYPE_NO_SHARED, "no"},
	{KESTREL_HWRAID_DSK_SHARED_TYPE_YES_SHARED, "yes"},
};

// Larger block counts arrive as the largest that the plug-in knows.
static std::string size_of(const raid_disk_t &d)
{
	if (d.nBlocks < 0 || d.nBytesPerBlock < 0 || d.nBlocks > INT_MAX)
		return "-";
	const std::string size = human_size_if_known(static_cast<std::uint64_t>(d.nBlocks) *
	                                             static_cast<std::uint64_t>(d.nBytesPerBlock));
	return d.nBlocks == INT_MAX ? "at least " + size : size;
}

static const column_t<raid_disk_t> COLUMNS[] = {
	{"ADDRESS", align_t::LEFT, [](const raid_disk_t &d) { return address(d.nPosition); }},
	{"TYPE", align_t::LEFT, [](const raid_disk_t &d) { return word_of(d.DeviceType, DEVICE_TYPES); }},
	{"SIZE", align_t::RIGHT, size_of},
	{"VENDOR", align_t::LEFT, [](const raid_disk_t &d) { return shown(d.szVendor); }},
	{"MODEL", align_t::LEFT, [](const raid_disk_t &d) { return shown(d.szModel); }},
	{"USAGE", align_t::LEFT, [](const raid_disk_t &d) { return word_of(d.Usage, USAGES); }},
	{"SHARED", align_t::LEFT, [](const raid_disk_t &d) { return word_of(d.Shared, SHARES); }},
	{"RATE", align_t::RIGHT, [](const raid_disk_t &d) { return std::to_string(d.nRate); }},
};

static ordered_json_t object(const raid_disk_t &d)
{
	return {
		{"address", json_address(d.nPosition)},
		{"vendor", json_text(d.szVendor)},
		{"model", json_text(d.szModel)},
		{"device_type", d.DeviceType},
		{"device_type_word", json_word(d.DeviceType, DEVICE_TYPES)},
		{"blocks", d.nBlocks},
		{"bytes_per_block", d.nBytesPerBlock},
		{"usage", d.Usage},
		{"usage_word", json_word(d.Usage, USAGES)},
		{"shared", d.Shared},
		{"shared_word", json_word(d.Shared, SHARES)},
		{"rate", d.nRate},
	};
}

static answer_t ask(enquiry_t &from)
{
	return answer_of(from.raid_disks(), COLUMNS, object);
}

const kind_t RAID_DISKS_KIND = {
	"raid-disks", "RAID DISKS", "RAID disk", "The controller has no disk.", scope_t::CONTROLLER, ask,
};
