// SPDX-License-Identifier: Apache-2.0
// Every record and every code of the public headers, as members of one variable: the functions of the
// plug-ins take and give them as void ** and int, from which no tool learns what an agent relies on.
#include "diskscout_block.h"
#include "diskscout_raid.h"

struct public_types {
	// define_command.h
	IPMICOMMAND *request;
	decltype(CMD_GET_DISKS) query_codes;
	// diskscout.h
	STORAGE_DISK_LIST *disk;
	STORAGE_CDROM_LIST *cdrom;
	STORAGE_PART_LIST *partition;
	aac_controller *controller;
	HWRAID_LIST *container;
	HWRAID_DISK_LIST *raid_disk;
	HWRAID_SPACE_LIST *raid_space;
	HWRAID_PARTITION_LIST *raid_partition;
	decltype(KESTREL_HWRAID_TYPE_UNKNOWN) raid_types;
	decltype(KESTREL_HWRAID_USAGE_TYPE_UNKNOW) usages;
	decltype(KESTREL_HWRAID_DSK_TYPE_UNKNOWN) disk_types;
	decltype(KESTREL_HWRAID_DSK_USAGE_UNKNOWN) disk_usages;
	decltype(KESTREL_HWRAID_DSK_SHARED_TYPE_UNKNOWN) shared;
	decltype(KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_UNKNOWN) accesses;
	decltype(KESTREL_HWRAID_PART_MULTILEVEL_TYPE_UNKNOWN) multilevels;
	// diskscout_raid.h
	aac_result results;
	decltype(AAC_NO_MEMBER) no_numbers;
	aac_container *raid_container;
	aac_disk *disk_of_controller;
	aac_space *space;
	aac_partition *piece;
	aac_task *task;
	// diskscout_block.h
	decltype(CMD_GET_BLOCK_DEVICES) block_query_codes;
	decltype(BLOCK_ABSENT) absent;
	block_text *text;
	block_device *device;
	block_link *link;
	block_content *content;
	block_partition *table_partition;
	block_mount *mount;
	block_member *member;
	block_array *array;
};

extern "C" {
public_types diskscout_public_types;
}
