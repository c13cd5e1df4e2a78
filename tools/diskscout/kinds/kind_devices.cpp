// SPDX-License-Identifier: Apache-2.0
// Block devices of today.
#include "block_fields.h"
#include "kinds.h"

#include <cstring>
#include <fmt/format.h>

using device_t = block_device;

static void put_mount_points(const row_t &row, sink_t &to)
{
	to.begin_list();
	if (row.from)
		for (const std::string_view place : row.from->mounted(record_of<device_t>(row).name))
			to.text(place);
	to.end_list();
}

// People know a mapping by the name that its administrator gave it.
static std::string name_cell(const row_t &row)
{
	const char *const name = record_of<device_t>(row).name;
	const char *const given = text_within<&device_t::dm_name>(row);
	return given ? fmt::format("{} ({})", name, given) : name;
}

static std::string kind_cell(const row_t &row)
{
	const char *const purpose = text_within<&device_t::dm_kind>(row);
	return purpose && strcmp(purpose, "unknown") != 0 ? purpose : record_of<device_t>(row).kind;
}

static constexpr field_t FIELDS[] = {
	{"name",
         "NAME",
         shape_t::TEXT,
         NEW,
         "the kernel's name, such as nvme0n1p2 or dm-0",
         told_text<&device_t::name>,
         {},
         name_cell},
	text<&device_t::node>("node", "NODE", "device node; null for a hidden device"),
	number<&device_t::major>("major", "MAJOR", "of the device number; null for a hidden device"),
	number<&device_t::minor>("minor", "MINOR", "of the device number; null for a hidden device"),
	{"kind",
         "KIND",
         shape_t::TEXT,
         NEW,
         "disk, partition, rom, md, dm, loop, zram, ram, floppy, path, or a driver's own word",
         told_text<&device_t::kind>,
         {},
         kind_cell},
	text<&device_t::disk>("disk", "DISK", "of a partition: name of the device that it is part of"),
	number<&device_t::partition_number>("partition_number", "NUMBER", "of a partition: from 1 on"),
	bytes<&device_t::size>("size", "SIZE", "bytes; 0 without a medium"),
	bytes<&device_t::logical_sector>("logical_sector", "LOGICAL SECTOR", "bytes"),
	bytes<&device_t::physical_sector>("physical_sector", "PHYSICAL SECTOR", "bytes"),
	flag<&device_t::rotational>("rotational", "ROTATIONAL", "it turns"),
	flag<&device_t::removable>("removable", "REMOVABLE", "the medium can be taken out"),
	flag<&device_t::hidden>("hidden", "HIDDEN", "it has no node and is a path of another device"),
	flag<&device_t::read_only>("read_only", "READ ONLY", "it cannot be written"),
	text<&device_t::transport>("transport", "BUS",
                                   "nvme, sata, ata, sas, usb, virtio, iscsi, fc, scsi, mmc ..."),
	text<&device_t::vendor>("vendor", "VENDOR", "null for ATA disks"),
	text<&device_t::model>("model", "MODEL", "as the device names itself; model_source tells from where"),
	text<&device_t::model_source>("model_source", "MODEL FROM",
                                      "kernel, vpd, udev, short (cut), or not asked"),
	text<&device_t::serial>("serial", "SERIAL", "serial number; serial_source tells from where"),
	text<&device_t::serial_source>("serial_source", "SERIAL FROM",
                                       "kernel, vpd, udev, short (cut), or not asked"),
	text<&device_t::firmware>("firmware", "FIRMWARE", "revision; firmware_source tells from where"),
	text<&device_t::firmware_source>("firmware_source", "FIRMWARE FROM",
                                         "kernel, vpd, udev, short (cut), or not asked"),
	text<&device_t::wwn>("wwn", "WWN", "world-wide name of the unit"),
	text<&device_t::eui64>("eui64", "EUI-64", "16, 24 or 32 hexadecimal digits"),
	text<&device_t::nguid>("nguid", "NGUID", "NVMe: 32 hexadecimal digits"),
	text<&device_t::uuid>("uuid", "UUID", "NVMe: of the namespace"),
	number<&device_t::scsi_host>("scsi_host", "HOST", "SCSI address"),
	number<&device_t::scsi_channel>("scsi_channel", "CHANNEL", "SCSI address"),
	number<&device_t::scsi_target>("scsi_target", "TARGET", "SCSI address"),
	number<&device_t::scsi_lun>("scsi_lun", "LUN", "SCSI address"),
	texts<&device_t::links>("links", "LINKS", "other paths in /dev that lead to it"),
	text<&device_t::controller_pci>("controller_pci", "PCI", "PCI address of its controller"),
	number<&device_t::numa_node>("numa_node", "NUMA NODE", "of its controller"),
	text<&device_t::state>("state", "STATE",
                               "the kernel's word, such as running, offline, live, suspended"),
	text<&device_t::dm_name>("dm_name", "MAPPING", "name of a device-mapper device"),
	text<&device_t::dm_uuid>("dm_uuid", "DM UUID", "of a device-mapper device"),
	text<&device_t::dm_kind>("dm_kind", "DM KIND",
                                 "lvm, crypt, multipath, partition, another prefix, or unknown"),
	text<&device_t::dm_target>("dm_target", "DM TARGET", "targets of its table; null without permission"),
	text<&device_t::backing_file>("backing_file", "BACKING FILE", "loop: the file behind it"),
	flag<&device_t::under_root>("under_root", "UNDER ROOT", "the file system mounted at / stands on it"),
	flag<&device_t::under_boot>("under_boot", "UNDER BOOT", "that of /boot"),
	flag<&device_t::under_swap>("under_swap", "UNDER SWAP", "a swap area in use"),
	{"mount_points", "MOUNT POINTS", shape_t::TEXTS, 0, "where it is mounted, [SWAP] for a swap area",
         put_mount_points},
};

const kind_t DEVICES_KIND = {
	"devices",
	"",
	"DEVICES",
	"device",
	"every block device, as a tree",
	"This host has no block device.",
	side_t::BLOCK,
	IN_TABLES | IN_DOCUMENT,
	FIELDS,
	"name,kind,size,transport,model,serial,mount_points",
	nullptr,
	ask_for_block<device_t, CMD_GET_BLOCK_DEVICES>,
	{},
	is_named<device_t>,
	"serial,transport,model",
};
