// SPDX-License-Identifier: Apache-2.0
// Disks.
#include "classic_fields.h"
#include "kinds.h"

#include <fmt/format.h>

using disk_t = STORAGE_DISK_LIST;

// An IDE disk has no address; the field is 0 there, which would read as the first SCSI disk.
static bool has_address(const disk_t &d)
{
	return text_of(d.szInterface) != "IDE";
}

static void put_address(const row_t &row, sink_t &to)
{
	const auto &d = record_of<disk_t>(row);
	if (has_address(d))
		to.text(fmt::format("{}:{}:{}:{}", d.nPosition >> 24, d.nPosition >> 16 & 0xff,
		                    d.nPosition >> 8 & 0xff, d.nPosition & 0xff));
	else
		to.absent();
}

static void put_position(const row_t &row, sink_t &to)
{
	const auto &d = record_of<disk_t>(row);
	if (has_address(d))
		to.large(d.nPosition);
	else
		to.absent();
}

// The record's 32 bits hold no more than a part of these.
template <unsigned Bytes> static void put_count_of(const row_t &row, sink_t &to)
{
	const auto &d = record_of<disk_t>(row);
	if (d.nSize)
		to.large(d.nSize / Bytes);
	else
		to.absent();
}

// What the geometry tells. Without one, which a size of 0 shows, all of it is 0.
template <auto Member> static void geometry_member(const row_t &row, sink_t &to)
{
	if (record_of<disk_t>(row).nSize)
		number_member<Member>(row, to);
	else
		to.absent();
}

template <auto Member>
static constexpr field_t geometry(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::NUMBER, NEW | MAY_LACK, what, geometry_member<Member>};
}

static constexpr field_t FIELDS[] = {
	number<&disk_t::nDiskID>("disk_id", "ID", "place in the list, from 0"),
	text<&disk_t::szDeviceName>("device_name", "DEVICE", "device node"),
	text<&disk_t::szDescription>("description", "DESCRIPTION", "fixed words of the record"),
	text<&disk_t::szInterface>("interface", "BUS", "IDE or SCSI"),
	number<&disk_t::nPosition>("position", "POSITION", "host, channel, ID and LUN, 8 bits each", OLD),
	{"position", "POSITION", shape_t::NUMBER, NEW | MAY_LACK,
         "SCSI address: host, channel, ID and LUN, 8 bits each; null for an IDE disk", put_position},
	{"address", "ADDRESS", shape_t::TEXT, MAY_LACK, "host:channel:ID:LUN", put_address},
	text<&disk_t::szMedia>("media", "MEDIA", "fixed word of the record"),
	text<&disk_t::szVendor>("vendor", "VENDOR", "as /proc/scsi/scsi tells it"),
	text<&disk_t::szModel>("model", "MODEL", "as /proc/ide or /proc/scsi/scsi tells it"),
	text<&disk_t::szSerialNumber>("serial_number", "SERIAL",
                                      "as /proc/ide tells it; null for a SCSI disk"),
	text<&disk_t::szFirmwareVersion>("firmware_version", "FIRMWARE", "revision"),
	bytes<&disk_t::nSize>("size", "SIZE", "bytes", OLD),
	{"size", "SIZE", shape_t::BYTES, NEW | MAY_LACK,
         "bytes of whole cylinders; null when the disk tells no geometry", known_member<&disk_t::nSize>},
	number<&disk_t::nTotalCylinders>("total_cylinders", "CYLINDERS", "", OLD),
	number<&disk_t::nTracksPerCylinder>("tracks_per_cylinder", "TRACKS", "", OLD),
	number<&disk_t::nSectorsPerTrack>("sectors_per_track", "SECTORS", "", OLD),
	number<&disk_t::nTotalHeads>("total_heads", "HEADS", "", OLD),
	number<&disk_t::nTotalTracks>("total_tracks", "ALL TRACKS", "", OLD),
	number<&disk_t::nTotalBlocks>("total_blocks", "BLOCKS", "", OLD),
	number<&disk_t::nTotalSectors>("total_sectors", "ALL SECTORS", "", OLD),
	geometry<&disk_t::nTotalCylinders>("total_cylinders", "CYLINDERS", "cylinders"),
	geometry<&disk_t::nTracksPerCylinder>("tracks_per_cylinder", "TRACKS", "tracks of a cylinder"),
	geometry<&disk_t::nSectorsPerTrack>("sectors_per_track", "SECTORS", "sectors of a track"),
	geometry<&disk_t::nTotalHeads>("total_heads", "HEADS", "heads"),
	geometry<&disk_t::nTotalTracks>("total_tracks", "ALL TRACKS", "cylinders x heads"),
	{"total_blocks", "BLOCKS", shape_t::NUMBER, NEW | MAY_LACK, "blocks of 1 KiB", put_count_of<1024>},
	geometry<&disk_t::nTotalBlocks>("total_blocks_low32", "BLOCKS MOD 2^32",
                                        "total_blocks as the record holds it: the low 32 bits"),
	{"total_sectors", "ALL SECTORS", shape_t::NUMBER, NEW | MAY_LACK, "sectors of 512 bytes",
         put_count_of<512>},
	geometry<&disk_t::nTotalSectors>("total_sectors_low32", "SECTORS MOD 2^32",
                                         "total_sectors as the record holds it: the low 32 bits"),
	number<&disk_t::nBytesPerBlock>("bytes_per_block", "BLOCK BYTES", "bytes of a block of total_blocks"),
	number<&disk_t::nBytesPerSector>("bytes_per_sector", "SECTOR BYTES",
                                         "bytes of a sector of total_sectors"),
	number<&disk_t::nPartNumber>("part_number", "PARTITIONS", "partitions in /proc/partitions"),
	flag<&disk_t::bUsedBySystem>("used_by_system", "SYSTEM", "/ or /boot lies on it"),
	number<&disk_t::nExPartNumber>("ex_part_number", "EXTENDED", "extended ones of these partitions"),
};

const kind_t DISKS_KIND = {
	"disks",
	"disks",
	"DISKS",
	"disk",
	"disks, as the classic list has them",
	"No disk with an IDE or SCSI name, such as hda or sda, was found.",
	side_t::HOST,
	IN_TABLES | IN_DOCUMENT | WHEN_ANY,
	FIELDS,
	"device_name,interface,address,size,vendor,model,serial_number,firmware_version,part_number,ex_part_"
	"number,"
	"used_by_system",
	nullptr,
	ask_for<disk_t, CMD_GET_DISKS>,
};
