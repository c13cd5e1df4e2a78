// SPDX-License-Identifier: Apache-2.0
// Vital product data pages of a SCSI unit, as the kernel read them when it found the unit.
//
// Each page begins with the device type, the page's code and the length of what follows, two bytes, high one
// first. What goes beyond the bytes that are there is not read, whatever a length says.
#ifndef DISKSCOUT_BLOCK_VPD_H
#define DISKSCOUT_BLOCK_VPD_H

#include "text.h"

// Page 80, the unit serial number; empty without one.
text_t vpd_serial(text_t page);

// Page 83, device identification: what names the unit itself, not its port or its target.
struct vpd_names_t {
	const char *wwn;   // NAA: "0x" and 16 or 32 digits, the longest there is
	const char *eui64; // 16, 24 or 32 digits
};
vpd_names_t vpd_names(Arena *arena, text_t page);

// Page 89, ATA information: the IDENTIFY data of a disk behind a translation.
struct ata_identity_t {
	const char *model;
	const char *serial;
	const char *firmware;
};
ata_identity_t vpd_ata_identity(Arena *arena, text_t page);

#endif
