// SPDX-License-Identifier: Apache-2.0
#include "devpath.h"

static bool is_digit(char c)
{
	return c >= '0' && c <= '9';
}

text_t last_name(text_t path)
{
	return path.substr(path.rfind('/') + 1);
}

// Takes the last component off the path; empty at its end.
static text_t take_last(text_t *path)
{
	const text_t name = last_name(*path);
	path->remove_suffix(name.size() < path->size() ? name.size() + 1 : name.size());
	return name;
}

// The path up to the last component that is of some kind, or empty.
static text_t folder_of(text_t path, bool (*is_wanted)(text_t name))
{
	while (!path.empty()) {
		const text_t folder = path;
		if (is_wanted(take_last(&path)))
			return folder;
	}
	return {};
}

static bool read_scsi_address(text_t name, int64_t (&numbers)[4])
{
	for (int64_t &number : numbers)
		if (!read_number(take_until(&name, ':'), &number))
			return false;
	return name.empty() && numbers[0] <= INT32_MAX && numbers[1] <= INT32_MAX && numbers[2] <= INT32_MAX;
}

// Four numbers of whatever size: that of a unit may be beyond what an address holds.
static bool is_scsi_address(text_t name)
{
	size_t numbers = 0;
	while (!name.empty()) {
		const text_t number = take_until(&name, ':');
		for (const char c : number)
			if (!is_digit(c))
				return false;
		if (number.empty())
			return false;
		numbers++;
	}
	return numbers == 4;
}

bool is_scsi_unit(text_t path)
{
	return !folder_of(path, is_scsi_address).empty();
}

bool scsi_address_of(text_t path, scsi_address_t *address)
{
	int64_t numbers[4];
	if (!read_scsi_address(last_name(folder_of(path, is_scsi_address)), numbers))
		return false;
	*address = {static_cast<int>(numbers[0]), static_cast<int>(numbers[1]), static_cast<int>(numbers[2]),
	            numbers[3]};
	return true;
}

// "0000:00:1f.2"; the domain may have more digits.
static bool is_pci_address(text_t name)
{
	uint64_t value;
	const text_t domain = take_until(&name, ':');
	const text_t bus = take_until(&name, ':');
	const text_t slot = take_until(&name, '.');
	return domain.size() >= 4 && bus.size() == 2 && slot.size() == 2 && name.size() == 1 &&
	       read_hex_number(domain, &value) && read_hex_number(bus, &value) &&
	       read_hex_number(slot, &value) && read_hex_number(name, &value);
}

// "2-1", "2-1.4": bus and ports; an interface has a colon, too.
static bool is_usb_device(text_t name)
{
	int64_t number;
	if (!take_number(&name, &number) || !take_until(&name, '-').empty() || name.empty())
		return false;
	while (!name.empty())
		if (!read_number(take_until(&name, '.'), &number))
			return false;
	return true;
}

static bool is_ata_port(text_t name)
{
	return begins_with(name, "ata") && name.size() > 3 && is_digit(name[3]);
}

text_t pci_folder_of(text_t path)
{
	return folder_of(path, is_pci_address);
}

text_t usb_folder_of(text_t path)
{
	return folder_of(path, is_usb_device);
}

text_t ata_folder_of(text_t path)
{
	return folder_of(path, is_ata_port);
}

// Components that tell a transport, a number behind them. What carries SCSI comes first: a disk behind a
// bridge is met by what it is attached to, and only then by what carries the controller.
static constexpr struct {
	text_t name;
	bool scsi;
	const char *transport;
} TRANSPORTS[] = {
	{"usb", true, "usb"},       {"ata", true, "sata"},  {"end_device-", true, "sas"},
	{"session", true, "iscsi"}, {"rport-", true, "fc"}, {"fw", true, "ieee1394"},
	{"nvme", false, "nvme"},    {"mmc", false, "mmc"},  {"virtio", false, "virtio"},
	{"vbd-", false, "xen"},
};

const char *transport_of(text_t path)
{
	const bool scsi = is_scsi_unit(path);
	while (!path.empty()) {
		const text_t name = take_last(&path);
		for (const auto &row : TRANSPORTS) {
			if (row.scsi == scsi && begins_with(name, row.name) &&
			    name.size() > row.name.size() && is_digit(name[row.name.size()]))
				return row.transport;
		}
	}
	return scsi ? "scsi" : nullptr;
}
