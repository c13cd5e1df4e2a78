// SPDX-License-Identifier: Apache-2.0
// The header of the RAID operations, compiled alone as C++.
#include "diskscout_raid.h"

int raid_header_cxx(const char *controller);
int raid_header_cxx(const char *controller)
{
	aac_space *space = nullptr;
	const int areas = Aac_Disk_Show_Space(controller, 0, &space);
	return areas == AAC_NO_SUCH_DEVICE ? 0 : Aac_Clear_Disk_Space_List(space);
}
