// SPDX-License-Identifier: Apache-2.0
// File names and device names: the one split of a name, and the shapes of IDE and SCSI disk names.
#ifndef DISKSCOUT_HDD_SAL_0_FN_H
#define DISKSCOUT_HDD_SAL_0_FN_H

#include "hdd/sal/src/0/def.h"

#include <string_view>

// /dev/sda12 has the base sda12, the stem sda and the number 12. The views point into the split path.
struct devname_t {
	std::string_view base; // what follows the last path separator
	std::string_view stem; // the base without its trailing decimal digits
	int number;            // their value: -1 for none, INT_MAX for more than an int holds
};

devname_t split_devname(std::string_view path);

// hda to hdt.
bool is_ide_stem(std::string_view stem);
// sda to sdz, and four letters of which only the last two count: aa to dx.
bool is_scsi_stem(std::string_view stem);
// An IDE stem with no number or 1 to 16, or a SCSI stem with no number or 1 to 15.
// compat: the bounds differ, and an IDE drive has more partitions: hda16 is one, hda17 has no name here.
bool is_ide_name(const devname_t &name);
bool is_scsi_name(const devname_t &name);

// dir, the separator and name into out. 0, or -1 when they do not fit; out is empty then.
int fn_join(fname_t out, const char *dir, const char *name);

#endif
