// The kinds of things that the plug-in lists.
#include "kinds.h"

const std::vector<const kind *> &all_kinds()
{
	static const std::vector<const kind *> kinds = {&disks_kind, &partitions_kind, &cdroms_kind};
	return kinds;
}
