// Disks.
#include "kinds.h"
#include "text.h"

#include <fmt/format.h>

using disk_t = STORAGE_DISK_LIST;

// An IDE disk has no address; the field is 0 there, which would read as the first SCSI disk.
static std::string address_of(const disk_t &d)
{
	if (text_of(d.szInterface) == "IDE")
		return "-";
	return fmt::format("{}:{}:{}:{}", d.nPosition >> 24, d.nPosition >> 16 & 0xff,
	                   d.nPosition >> 8 & 0xff, d.nPosition & 0xff);
}

static const column_t<disk_t> COLUMNS[] = {
	{"DEVICE", align_t::LEFT, [](const disk_t &d) { return shown(d.szDeviceName); }},
	{"BUS", align_t::LEFT, [](const disk_t &d) { return shown(d.szInterface); }},
	{"ADDRESS", align_t::LEFT, address_of},
	{"SIZE", align_t::RIGHT, [](const disk_t &d) { return human_size_if_known(d.nSize); }},
	{"VENDOR", align_t::LEFT, [](const disk_t &d) { return shown(d.szVendor); }},
	{"MODEL", align_t::LEFT, [](const disk_t &d) { return shown(d.szModel); }},
	{"SERIAL", align_t::LEFT, [](const disk_t &d) { return shown(d.szSerialNumber); }},
	{"FIRMWARE", align_t::LEFT, [](const disk_t &d) { return shown(d.szFirmwareVersion); }},
	{"PARTITIONS", align_t::RIGHT, [](const disk_t &d) { return fmt::to_string(d.nPartNumber); }},
	{"EXTENDED", align_t::RIGHT, [](const disk_t &d) { return fmt::to_string(d.nExPartNumber); }},
	{"SYSTEM", align_t::LEFT, [](const disk_t &d) { return mark(d.bUsedBySystem); }},
};

static ordered_json_t object(const disk_t &d)
{
	return {
		{"disk_id", d.nDiskID},
		{"device_name", json_text(d.szDeviceName)},
		{"description", json_text(d.szDescription)},
		{"interface", json_text(d.szInterface)},
		{"position", d.nPosition},
		{"media", json_text(d.szMedia)},
		{"vendor", json_text(d.szVendor)},
		{"model", json_text(d.szModel)},
		{"serial_number", json_text(d.szSerialNumber)},
		{"firmware_version", json_text(d.szFirmwareVersion)},
		{"size", d.nSize},
		{"total_cylinders", d.nTotalCylinders},
		{"tracks_per_cylinder", d.nTracksPerCylinder},
		{"sectors_per_track", d.nSectorsPerTrack},
		{"total_heads", d.nTotalHeads},
		{"total_tracks", d.nTotalTracks},
		{"total_blocks", d.nTotalBlocks},
		{"total_sectors", d.nTotalSectors},
		{"bytes_per_block", d.nBytesPerBlock},
		{"bytes_per_sector", d.nBytesPerSector},
		{"part_number", d.nPartNumber},
		{"used_by_system", d.bUsedBySystem != 0},
		{"ex_part_number", d.nExPartNumber},
	};
}

static answer_t ask(enquiry_t &from)
{
	return answer_of(from.ask(CMD_GET_DISKS), COLUMNS, object);
}

const kind_t DISKS_KIND = {
	"disks",       "DISKS", "disk", "No disk with an IDE or SCSI name, such as hda or sda, was found.",
	scope_t::HOST, ask,
};
