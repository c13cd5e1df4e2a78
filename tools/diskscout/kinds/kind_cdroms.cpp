// SPDX-License-Identifier: Apache-2.0
// CD-ROM drives.
#include "classic_fields.h"
#include "kinds.h"

using cdrom_t = STORAGE_CDROM_LIST;

static void put_position(const row_t &row, sink_t &to)
{
	const auto &c = record_of<cdrom_t>(row);
	if (text_of(c.szInterface) == "IDE")
		to.absent();
	else
		to.large(c.nPosition);
}

static constexpr field_t FIELDS[] = {
	number<&cdrom_t::nCdromID>("cdrom_id", "ID", "place in the list, from 0"),
	text<&cdrom_t::szDeviceName>("device_name", "DEVICE", "device node"),
	text<&cdrom_t::szDiscription>("description", "DESCRIPTION", "fixed words of the record"),
	text<&cdrom_t::szInterface>("interface", "BUS", "IDE"),
	number<&cdrom_t::nPosition>("position", "POSITION", "", OLD),
	{"position", "POSITION", shape_t::NUMBER, NEW | MAY_LACK,
         "SCSI address: host, channel, ID and LUN, 8 bits each; null for an IDE drive", put_position},
	text<&cdrom_t::szMedia>("media", "MEDIA", "fixed word of the record"),
	text<&cdrom_t::szVendor>("vendor", "VENDOR", "null for an IDE drive"),
	text<&cdrom_t::szModel>("model", "MODEL", "as /proc/ide tells it"),
	text<&cdrom_t::szSerialNumber>("serial_number", "SERIAL", "as /proc/ide tells it"),
	text<&cdrom_t::szFirmwareVersion>("firmware_version", "FIRMWARE", "revision"),
	text<&cdrom_t::szMountPoint>("mount_point", "MOUNT POINT", "where its disc is mounted"),
	text<&cdrom_t::szLabel>("label", "LABEL", "always null: no label is read"),
	bytes<&cdrom_t::nTotalSpace>("total_space", "SIZE", "", OLD),
	{"total_space", "SIZE", shape_t::BYTES, NEW | MAY_LACK, "bytes of the mounted file system",
         known_member<&cdrom_t::nTotalSpace>},
};

const kind_t CDROMS_KIND = {
	"cdroms",
	"cdroms",
	"CD-ROMS",
	"CD-ROM",
	"CD-ROM drives, as the classic list has them",
	"No CD-ROM drive was found.",
	side_t::HOST,
	IN_TABLES | IN_DOCUMENT | WHEN_ANY,
	FIELDS,
	"device_name,interface,model,serial_number,firmware_version,mount_point,total_space",
	nullptr,
	ask_for<cdrom_t, CMD_GET_CDROMS>,
};
