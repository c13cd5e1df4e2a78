// SPDX-License-Identifier: Apache-2.0
// Free areas of the disks behind RAID controllers.
#include "raid.h"

using area_t = HWRAID_SPACE_LIST;

static constexpr field_t FIELDS[] = {
	controller_field<raid_space_t>(),
	address_field<&raid_space_t::disk>("address", "DISK",
                                           "the disk: channel, SCSI ID and LUN at the controller"),
	number<&area_t::nOffset>("offset", "", "", OLD),
	number<&area_t::nFreeSpace>("free_space", "", "", OLD),
	told<&raid_space_t::offset>(
		"offset", "OFFSET",
		"bytes from the disk's beginning; null: no more is told than offset_low32"),
	low32<&area_t::nOffset>("offset_low32", "OFFSET MOD 4 GIB",
                                "offset without whole multiples of 4 GiB, as the record holds it"),
	told<&raid_space_t::free_space>("free_space", "FREE",
                                        "bytes; null: no more is told than free_space_low32"),
	low32<&area_t::nFreeSpace>("free_space_low32", "FREE MOD 4 GIB",
                                   "free_space without whole multiples of 4 GiB, as the record holds it"),
};

const kind_t RAID_SPACE_KIND = {
	"raid_space",
	"raid-space",
	"RAID SPACE",
	"RAID space",
	"free areas of disks behind RAID controllers",
	"No disk of a RAID controller has a free area.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"controller,address,offset,free_space",
	"address,offset_low32,free_space_low32",
	ask_controllers<raid_space_t, &raid_site_t::spaces>,
	"MOD 4 GIB leaves out whole multiples of 4 GiB; raid-disks and raid-partitions show sizes in full.",
	nullptr,
	"",
	"The disks of the controller have no free area.",
};
