// SPDX-License-Identifier: Apache-2.0
#include "identity.h"

#include "devpath.h"
#include "vpd.h"

#include <stdio.h>
#include <string.h>

// The texts that can come from several places, and where they are told.
struct fact_t {
	const char **text;
	const char **source;
};

// The first place that has a text wins.
static bool is_wanted(const fact_t &fact)
{
	return !*fact.text;
}

static void tell(const fact_t &fact, const char *text, const char *source)
{
	if (!is_wanted(fact) || !text)
		return;
	*fact.text = text;
	*fact.source = source;
}

struct facts_t {
	fact_t model, serial, firmware;

	explicit facts_t(block_device *record)
	    : model{&record->model, &record->model_source}, serial{&record->serial, &record->serial_source},
	      firmware{&record->firmware, &record->firmware_source}
	{
	}
};

// An attribute of the folder that a path in sysfs names.
static const char *read_above(Arena *arena, text_t folder, const char *name)
{
	const char *path = arena->copy(folder);
	const Folder sys("/sys");
	const Folder above(sys, path ? path : "");
	return above.is_open() ? read_text(arena, above, name) : nullptr;
}

static text_t page_of(const Folder &folder, const char *path, attribute_t *page)
{
	return read_attribute(folder, path, page) ? page->whole() : text_t{};
}

// In udev's words: what it asked the unit itself for comes first.
static constexpr text_t SERIAL_KEYS[] = {"SCSI_IDENT_SERIAL", "ID_SCSI_SERIAL", "ID_SERIAL_SHORT"};
static constexpr text_t WWN_KEYS[] = {"ID_WWN_WITH_EXTENSION", "ID_WWN"};

template <size_t COUNT>
static const char *udev_text(Arena *arena, const UdevRecord &udev, const text_t (&keys)[COUNT])
{
	return shown_text(arena, trimmed(udev.first_value(keys, COUNT)));
}

static void read_ata(Arena *arena, const Folder &folder, const UdevRecord &udev, const facts_t &facts)
{
	attribute_t page;
	const ata_identity_t told = vpd_ata_identity(arena, page_of(folder, "device/vpd_pg89", &page));
	tell(facts.model, told.model, "vpd");
	tell(facts.serial, told.serial, "vpd");
	tell(facts.firmware, told.firmware, "vpd");
	if (udev.value("ID_BUS") == "ata") {
		tell(facts.model, udev.decoded(arena, "ID_MODEL_ENC"), "udev");
		tell(facts.firmware, shown_text(arena, trimmed(udev.value("ID_REVISION"))), "udev");
	}
	// The kernel keeps what fits the fields of a SCSI inquiry.
	if (is_wanted(facts.model))
		tell(facts.model, read_text(arena, folder, "device/model"), "short");
	if (is_wanted(facts.firmware))
		tell(facts.firmware, read_text(arena, folder, "device/rev"), "short");
}

static void read_scsi(Arena *arena, const Folder &folder, const UdevRecord &udev, device_t *device)
{
	block_device *record = &device->record;
	const facts_t facts(record);
	attribute_t page;

	record->vendor = read_text(arena, folder, "device/vendor");
	if (record->vendor && strcmp(record->vendor, "ATA") == 0) {
		record->vendor = nullptr;
		read_ata(arena, folder, udev, facts);
	}
	if (is_wanted(facts.model))
		tell(facts.model, read_text(arena, folder, "device/model"), "kernel");
	if (is_wanted(facts.firmware))
		tell(facts.firmware, read_text(arena, folder, "device/rev"), "kernel");
	if (is_wanted(facts.serial))
		tell(facts.serial, shown_text(arena, vpd_serial(page_of(folder, "device/vpd_pg80", &page))),
		     "vpd");
	if (is_wanted(facts.serial))
		tell(facts.serial, udev_text(arena, udev, SERIAL_KEYS), "udev");
	const text_t usb = usb_folder_of(device->path);
	if (is_wanted(facts.serial) && !usb.empty())
		tell(facts.serial, read_above(arena, usb, "serial"), "kernel");

	const vpd_names_t names = vpd_names(arena, page_of(folder, "device/vpd_pg83", &page));
	record->wwn = names.wwn ? names.wwn : udev_text(arena, udev, WWN_KEYS);
	record->eui64 = names.eui64;
}

// Digits alone of "00 25 38 ..." and "01234567-89ab-...".
static const char *digits_of(Arena *arena, const char *text)
{
	char *digits = text ? arena->copy(text) : nullptr;
	size_t count = 0;
	for (size_t i = 0; digits && text[i] != '\0'; i++)
		if (text[i] != ' ' && text[i] != '-')
			digits[count++] = text[i];
	if (digits)
		digits[count] = '\0';
	return digits;
}

static void read_nvme(Arena *arena, const Folder &folder, const UdevRecord &, device_t *device)
{
	block_device *record = &device->record;
	const facts_t facts(record);

	tell(facts.model, read_text(arena, folder, "device/model"), "kernel");
	tell(facts.serial, read_text(arena, folder, "device/serial"), "kernel");
	tell(facts.firmware, read_text(arena, folder, "device/firmware_rev"), "kernel");
	record->wwn = read_text(arena, folder, "wwid");
	record->eui64 = digits_of(arena, read_text(arena, folder, "eui"));
	record->nguid = digits_of(arena, read_text(arena, folder, "nguid"));
	// The attribute `uuid` shows the NGUID in its place, and the kernel complains about who reads it.
	constexpr text_t UUID = "uuid.";
	if (record->wwn && begins_with(record->wwn, UUID))
		record->uuid = record->wwn + UUID.size();
}

static void read_virtio(Arena *arena, const Folder &, const UdevRecord &udev, device_t *device)
{
	static constexpr text_t KEYS[] = {"ID_SERIAL_SHORT", "ID_SERIAL"};
	const facts_t facts(&device->record);

	tell(facts.serial, udev_text(arena, udev, KEYS), "udev");
	// Its attribute `serial` is a request to the device, and a device that hangs would hold us.
	if (is_wanted(facts.serial))
		*facts.serial.source = "not asked";
}

static void read_mmc(Arena *arena, const Folder &folder, const UdevRecord &, device_t *device)
{
	const facts_t facts(&device->record);
	tell(facts.model, read_text(arena, folder, "device/name"), "kernel");
	tell(facts.serial, read_text(arena, folder, "device/serial"), "kernel");
	tell(facts.firmware, read_text(arena, folder, "device/fwrev"), "kernel");
}

// Transports that carry no SCSI, and how their devices tell who they are.
static constexpr struct {
	text_t transport;
	void (*read)(Arena *arena, const Folder &folder, const UdevRecord &udev, device_t *device);
} READERS[] = {
	{"nvme", read_nvme},
	{"virtio", read_virtio},
	{"mmc", read_mmc},
};

// What belongs to an ATA port is a serial link only when it tells a speed. A parallel one tells none.
static bool has_link_speed(Arena *arena, text_t path)
{
	const text_t port = ata_folder_of(path);
	const text_t number = last_name(port).substr(3);
	char link[64];

	if (port.empty() || number.size() > 10)
		return false;
	const int digits = static_cast<int>(number.size());
	snprintf(link, sizeof link, "link%.*s/ata_link/link%.*s/sata_spd", digits, number.data(), digits,
	         number.data());
	const char *speed = read_above(arena, port, link);
	return speed && strcmp(speed, "<unknown>") != 0;
}

void read_identity(Arena *arena, const Folder &folder, const UdevRecord &udev, device_t *device)
{
	block_device *record = &device->record;
	scsi_address_t address;

	record->transport = transport_of(device->path);
	if (!record->transport)
		return;
	if (scsi_address_of(device->path, &address)) {
		record->scsi_host = address.host;
		record->scsi_channel = address.channel;
		record->scsi_target = address.target;
		record->scsi_lun = address.lun;
	}
	if (is_scsi_unit(device->path)) {
		if (strcmp(record->transport, "sata") == 0 && !has_link_speed(arena, device->path))
			record->transport = "ata";
		read_scsi(arena, folder, udev, device);
		record->state = read_text(arena, folder, "device/state");
		return;
	}
	for (const auto &row : READERS)
		if (row.transport == record->transport)
			row.read(arena, folder, udev, device);
	if (strcmp(record->transport, "nvme") == 0)
		record->state = read_text(arena, folder, "device/state");
}
