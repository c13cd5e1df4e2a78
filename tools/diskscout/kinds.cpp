// The kinds of things that the plug-in lists.
#include "kinds.h"

const std::vector<const kind_t *> &all_kinds()
{
	static const std::vector<const kind_t *> KINDS = {
		&DISKS_KIND,      &PARTITIONS_KIND, &CDROMS_KIND,     &CONTROLLERS_KIND,
		&CONTAINERS_KIND, &RAID_DISKS_KIND, &RAID_SPACE_KIND, &RAID_PARTITIONS_KIND,
	};
	return KINDS;
}
