// CD-ROM drives.
#include "kinds.h"
#include "text.h"

using cdrom = STORAGE_CDROM_LIST;

static const column<cdrom> columns[] = {
	{"DEVICE", align::left, [](const cdrom &c) { return shown(c.szDeviceName); }},
	{"BUS", align::left, [](const cdrom &c) { return shown(c.szInterface); }},
	{"MODEL", align::left, [](const cdrom &c) { return shown(c.szModel); }},
	{"SERIAL", align::left, [](const cdrom &c) { return shown(c.szSerialNumber); }},
	{"FIRMWARE", align::left, [](const cdrom &c) { return shown(c.szFirmwareVersion); }},
	{"MOUNT POINT", align::left, [](const cdrom &c) { return shown(c.szMountPoint); }},
	{"SIZE", align::right, [](const cdrom &c) { return human_size_if_known(c.nTotalSpace); }},
};

static ordered_json object(const cdrom &c)
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

static answer ask(enquiry &from)
{
	return answer_of(from.ask(CMD_GET_CDROMS), columns, object);
}

const kind cdroms_kind = {
	"cdroms", "CD-ROMS", "CD-ROM", "No CD-ROM drive was found.", scope::host, ask,
};
