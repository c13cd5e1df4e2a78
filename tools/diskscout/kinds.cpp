// The kinds of things that the plug-in lists.
#include "kinds.h"

const std::vector<const kind *> &all_kinds()
{
	static const std::vector<const kind *> kinds = {
		&disks_kind,      &partitions_kind, &cdroms_kind,     &controllers_kind,
		&containers_kind, &raid_disks_kind, &raid_space_kind, &raid_partitions_kind,
	};
	return kinds;
}
