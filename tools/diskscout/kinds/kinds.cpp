// SPDX-License-Identifier: Apache-2.0
// The kinds of things that are listed.
#include "kinds.h"

const kinds_t &all_kinds()
{
	static const kinds_t KINDS = {
		&DEVICES_KIND,         &LINKS_KIND,      &FILESYSTEMS_KIND, &ARRAYS_KIND,
		&MOUNTS_KIND,          &DISKS_KIND,      &PARTITIONS_KIND,  &CDROMS_KIND,
		&CONTROLLERS_KIND,     &CONTAINERS_KIND, &RAID_DISKS_KIND,  &RAID_SPACE_KIND,
		&RAID_PARTITIONS_KIND, &TASKS_KIND,      &DEFECTS_KIND,
	};
	return KINDS;
}
