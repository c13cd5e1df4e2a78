// SPDX-License-Identifier: Apache-2.0
// Partitions.
#include "classic_fields.h"
#include "kinds.h"

#include <fmt/format.h>

using partition_t = STORAGE_PART_LIST;

// The kernel numbers partitions from 1, the record counts them from 0.
static void put_device_name(const row_t &row, sink_t &to)
{
	const auto &p = record_of<partition_t>(row);
	const std::string disk = text_of(p.szDiskDeviceName);
	put_text(disk.empty() ? disk : disk + fmt::to_string(std::uint64_t{p.nPartIndex} + 1), to);
}

// The start is counted in sectors, as the partitioning programs do, so that both can be compared.
static void put_first_sector(const row_t &row, sink_t &to)
{
	to.large(record_of<partition_t>(row).nStart / 512);
}

static void put_sectors(const row_t &row, sink_t &to)
{
	const auto &p = record_of<partition_t>(row);
	if (p.nSize)
		to.large(p.nSize / 512);
	else
		to.absent();
}

// The record joins them with semicolons.
static void put_mount_points(const row_t &row, sink_t &to)
{
	const std::string joined = text_of(record_of<partition_t>(row).szMountPoint);
	std::string_view rest = joined;
	to.begin_list();
	while (!rest.empty()) {
		const std::size_t length = std::min(rest.find(';'), rest.size());
		to.text(rest.substr(0, length));
		rest.remove_prefix(std::min(length + 1, rest.size()));
	}
	to.end_list();
}

// 0 bytes used is an answer, but only of a mounted file system.
static void put_used_space(const row_t &row, sink_t &to)
{
	const auto &p = record_of<partition_t>(row);
	if (p.nTotalSpace)
		to.large(p.nUsedSpace);
	else
		put_known(p.nUsedSpace, to);
}

// A char is signed here: 0x80 would come out as -128.
static unsigned char boot_byte_of(const partition_t &p)
{
	return static_cast<unsigned char>(p.bActive);
}

static void put_boot_byte(const row_t &row, sink_t &to)
{
	to.number(boot_byte_of(record_of<partition_t>(row)));
}

static constexpr unsigned BOOTABLE = 0x80;

static void put_bootable(const row_t &row, sink_t &to)
{
	to.flag(boot_byte_of(record_of<partition_t>(row)) == BOOTABLE);
}

// Other bytes than 0 and 0x80 are in nobody's rules; they are shown for what they are.
static std::string boot_cell(const row_t &row)
{
	const unsigned byte = boot_byte_of(record_of<partition_t>(row));
	if (byte == 0 || byte == BOOTABLE)
		return mark(byte == BOOTABLE);
	return fmt::format("0x{:02x}", byte);
}

static constexpr field_t FIELDS[] = {
	{"device_name", "DEVICE", shape_t::TEXT, NEW | MAY_LACK, "device node", put_device_name},
	text<&partition_t::szDiskDeviceName>("disk_device_name", "DISK", "device node of its disk"),
	number<&partition_t::nPartIndex>(
		"part_index", "INDEX",
		"place in the partition table, from 0; from 4 on in extended partitions"),
	{"first_sector", "FIRST SECTOR", shape_t::NUMBER, 0, "sectors of 512 bytes from the disk's beginning",
         put_first_sector},
	bytes<&partition_t::nStart>("start", "START", "bytes from the disk's beginning"),
	bytes<&partition_t::nSize>("size", "SIZE", "bytes", OLD),
	{"size", "SIZE", shape_t::BYTES, NEW | MAY_LACK, "bytes", known_member<&partition_t::nSize>},
	number<&partition_t::nTotalSectors>("total_sectors", "SECTORS", "", OLD),
	{"total_sectors", "SECTORS", shape_t::NUMBER, NEW | MAY_LACK, "sectors of 512 bytes", put_sectors},
	number<&partition_t::nTotalSectors>("total_sectors_low32", "SECTORS MOD 2^32",
                                            "total_sectors as the record holds it: the low 32 bits", NEW),
	text<&partition_t::szType>("type", "TYPE",
                                   "Primary Partition, Extended Partition, Logical Drive or Dynamic Volume"),
	text<&partition_t::szFileSystem>("file_system", "FILE SYSTEM", "type of the mounted file system"),
	text<&partition_t::szMountPoint>("mount_point", "MOUNT POINTS", "", OLD),
	{"mount_points", "MOUNT POINTS", shape_t::TEXTS, NEW,
         "where it is mounted; of a text of more than 63 bytes the record holds 60 and \"...\"",
         put_mount_points},
	text<&partition_t::szLabel>("label", "LABEL", "always null: no label is read"),
	bytes<&partition_t::nTotalSpace>("total_space", "TOTAL", "", OLD),
	bytes<&partition_t::nUsedSpace>("used_space", "USED", "", OLD),
	{"total_space", "TOTAL", shape_t::BYTES, NEW | MAY_LACK, "bytes of the mounted file system",
         known_member<&partition_t::nTotalSpace>},
	{"used_space", "USED", shape_t::BYTES, NEW | MAY_LACK, "bytes of it that are taken", put_used_space},
	flag<&partition_t::bUsedBySystem>("used_by_system", "SYSTEM", "mounted at / or /boot"),
	flag<&partition_t::bActive>("active", "BOOT", "", OLD),
	{"bootable", "BOOT", shape_t::FLAG, NEW, "the boot byte is 128", put_bootable, {}, boot_cell},
	{"boot_byte", "BOOT BYTE", shape_t::NUMBER, OLD | NEW,
         "boot byte of the table's entry: 128 bootable, 0 not", put_boot_byte},
};

const kind_t PARTITIONS_KIND = {
	"partitions",
	"partitions",
	"PARTITIONS",
	"partition",
	"partitions, as the classic list has them",
	"No partition was found on the disks of this host.",
	side_t::HOST,
	IN_TABLES | IN_DOCUMENT | WHEN_ANY,
	FIELDS,
	"device_name,type,bootable,first_sector,size,file_system,mount_points,total_space,used_space,used_by_"
	"system",
	"device_name,type,active,first_sector,size,file_system,mount_point,total_space,used_space,used_by_"
	"system",
	ask_for<partition_t, CMD_GET_PARTITIONS>,
};
