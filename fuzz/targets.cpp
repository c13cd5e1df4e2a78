// SPDX-License-Identifier: Apache-2.0
#include "targets.h"

const std::vector<Target> TARGETS = {
	{"controllers", 1, check_controllers},
	{"containers", 8, check_containers},
	{"deletion", 1, check_deletion},
	{"failover", 1, check_failover},
	{"spare", 1, check_spare},
	{"device", 1, check_device},
	{"creation", 1, check_creation},
	{"disks", 2, check_disks},
	{"initialisation", 1, check_initialisation},
	{"defects", 1, check_defects},
	{"spaces", 1, check_spaces},
	{"partitions", 2, check_partitions},
	{"tasks", 1, check_tasks},
	{"text", 1, check_text},
	{"mdstat", 2, check_mdstat},
	{"procblk", 1, check_procblk},
	{"procide", 1, check_procide},
	{"procscsi", 1, check_procscsi},
	{"mtab", 1, check_mtab},
	{"raidtab", 2, check_raidtab},
	{"chain", 2, check_chain},
	{"vpd", 1, check_vpd},
	{"udev", 1, check_udev},
	{"mounts", 2, check_mounts},
	{"arrays", 1, check_arrays},
	{"image", 2, check_image},
	{"commands", 2, check_commands},
	{"console", 2, check_console},
};

const Target *find_target(const std::string &name)
{
	for (const Target &target : TARGETS)
		if (name == target.name)
			return &target;
	return nullptr;
}
