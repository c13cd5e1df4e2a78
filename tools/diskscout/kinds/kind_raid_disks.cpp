// SPDX-License-Identifier: Apache-2.0
// Disks behind a RAID controller.
#include "raid.h"

#include <climits>

using disk_t = HWRAID_DISK_LIST;

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
static bool is_cut(const disk_t &d)
{
	return d.nBlocks >= INT_MAX;
}

static void put_blocks(const row_t &row, sink_t &to)
{
	const auto &d = record_of<disk_t>(row);
	if (is_cut(d) || d.nBlocks < 0)
		to.absent();
	else
		to.number(d.nBlocks);
}

static void put_blocks_least(const row_t &row, sink_t &to)
{
	const auto &d = record_of<disk_t>(row);
	if (d.nBlocks < 0)
		to.absent();
	else
		to.number(d.nBlocks);
}

static bool is_sized(const disk_t &d)
{
	return d.nBlocks > 0 && d.nBytesPerBlock > 0 && d.nBlocks <= INT_MAX;
}

static std::uint64_t bytes_of(const disk_t &d)
{
	return static_cast<std::uint64_t>(d.nBlocks) * static_cast<std::uint64_t>(d.nBytesPerBlock);
}

// A plain number has no place for "at least".
static void put_size(const row_t &row, sink_t &to)
{
	const auto &d = record_of<disk_t>(row);
	if (is_sized(d) && !is_cut(d))
		to.large(bytes_of(d));
	else
		to.absent();
}

static std::string size_cell(const row_t &row)
{
	const auto &d = record_of<disk_t>(row);
	if (!is_sized(d))
		return "-";
	return (is_cut(d) ? "at least " : "") + human_size(bytes_of(d));
}

static constexpr field_t FIELDS[] = {
	controller_field<raid_disk_t>(),
	address_field<&disk_t::nPosition>("address", "ADDRESS", "channel, SCSI ID and LUN at the controller"),
	text<&disk_t::szVendor>("vendor", "VENDOR", "with underscores for blanks"),
	text<&disk_t::szModel>("model", "MODEL", "with underscores for blanks"),
	number<&disk_t::DeviceType>("device_type", "TYPE CODE", "code of device_type_word"),
	word<&disk_t::DeviceType, DEVICE_TYPES>("device_type_word", "TYPE", "null for a code without a word"),
	number<&disk_t::nBlocks>("blocks", "BLOCKS", "", OLD),
	{"blocks", "BLOCKS", shape_t::NUMBER, NEW | MAY_LACK, "blocks; null beyond what the record holds",
         put_blocks},
	{"blocks_least", "BLOCKS AT LEAST", shape_t::NUMBER, NEW | MAY_LACK,
         "blocks as the record holds them: 2147483647 for all larger numbers", put_blocks_least},
	number<&disk_t::nBytesPerBlock>("bytes_per_block", "BLOCK BYTES", "bytes of a block"),
	{"size", "SIZE", shape_t::BYTES, 0, "bytes of blocks", put_size, {}, size_cell},
	number<&disk_t::Usage>("usage", "USAGE CODE", "code of usage_word"),
	word<&disk_t::Usage, USAGES>("usage_word", "USAGE", "null for a code without a word"),
	number<&disk_t::Shared>("shared", "SHARED CODE", "code of shared_word"),
	word<&disk_t::Shared, SHARES>("shared_word", "SHARED", "null for a code without a word"),
	number<&disk_t::nRate>("rate", "RATE", "MB a second that the bus is run at"),
};

const kind_t RAID_DISKS_KIND = {
	"raid_disks",
	"raid-disks",
	"RAID DISKS",
	"RAID disk",
	"disks behind RAID controllers",
	"No RAID controller has a disk.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"controller,address,device_type_word,size,vendor,model,usage_word,shared_word,rate",
	"address,device_type_word,size,vendor,model,usage_word,shared_word,rate",
	ask_controllers<raid_disk_t, &raid_site_t::disks>,
	"",
	nullptr,
	"shared_word,rate",
	"The controller has no disk.",
};
