// CD-ROM drives.
#include "kinds.h"
#include "text.h"

using cdrom_t = STORAGE_CDROM_LIST;

static const column_t<cdrom_t> COLUMNS[] = {
	{"DEVICE", align_t::LEFT, [](const cdrom_t &c) { return shown(c.szDeviceName); }},
	{"BUS", align_t::LEFT, [](const cdrom_t &c) { return shown(c.szInterface); }},
	{"MODEL", align_t::LEFT, [](const cdrom_t &c) { return shown(c.szModel); }},
	{"SERIAL", align_t::LEFT, [](const cdrom_t &c) { return shown(c.szSerialNumber); }},
	{"FIRMWARE", align_t::LEFT, [](const cdrom_t &c) { return shown(c.szFirmwareVersion); }},
	{"MOUNT POINT", align_t::LEFT, [](const cdrom_t &c) { return shown(c.szMountPoint); }},
	{"SIZE", align_t::RIGHT, [](const cdrom_t &c) { return human_size_if_known(c.nTotalSpace); }},
};

static ordered_json_t object(const cdrom_t &c)
{
	return {
		{"cdrom_id", c.nCdromID},
		{"device_name", json_text(c.szDeviceName)},
		{"description", json_text(c.szDiscription)},
		{"interface", json_text(c.szInterface)},
		{"position", c.nPosition},
		{"media", json_text(c.szMedia)},
		{"vendor", json_text(c.szVendor)},
		{"model", json_text(c.szModel)},
		{"serial_number", json_text(c.szSerialNumber)},
		{"firmware_version", json_text(c.szFirmwareVersion)},
		{"mount_point", json_text(c.szMountPoint)},
		{"label", json_text(c.szLabel)},
		{"total_space", c.nTotalSpace},
	};
}

static answer_t ask(enquiry_t &from)
{
	return answer_of(from.ask(CMD_GET_CDROMS), COLUMNS, object);
}

const kind_t CDROMS_KIND = {
	"cdroms", "CD-ROMS", "CD-ROM", "No CD-ROM drive was found.", scope_t::HOST, ask,
};
