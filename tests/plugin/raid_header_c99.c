/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The header of the RAID operations, compiled alone as C99 in the strictest way: what it declares, the codes,
 * and the layout of all records as a C program sees it.
 */
#include "diskscout_raid.h"

#include <stddef.h>

/* A type that cannot be, where the condition does not hold. */
#define CHECK(name, condition) typedef char name[(condition) ? 1 : -1]

#define SIZE(record, size)        CHECK(size_of_##record, sizeof(record) == (size))
#define AT(record, field, offset) CHECK(offset_of_##record##_##field, offsetof(record, field) == (offset))
#include "layout.h"

#define CODE(name, value) CHECK(value_of_##name, (name) == (value))
CODE(AAC_OK, 0);
CODE(AAC_RUN_FAILED, -1);
CODE(AAC_NO_SUCH_DEVICE, -2);
CODE(AAC_BAD_STRIPE_SIZE, -3);
CODE(AAC_NO_SUCH_CONTAINER, -5);
CODE(AAC_BAD_PARAMETER, -6);
CODE(AAC_NO_HOT_SPARE, -10);
CODE(AAC_SIZES_DIFFER, -20);
CODE(AAC_NO_SPACE, -30);
CODE(AAC_BAD_DISK_STATUS, -50);
CODE(AAC_DISK_CROWDED, -70);
CODE(AAC_NOT_A_HOT_SPARE, -90);
CODE(AAC_CONTROLLER_UNUSABLE, -100);
CODE(AAC_CONTROLLER_BUSY, -200);
CODE(AAC_TOOL_ERROR, -300);
CODE(AAC_NO_MEMBER, -1);
CODE(AAC_NOT_GIVEN, -1);
CODE(AAC_NO_MORE, -1);

/* The types that agents have been built with. */
struct raid_operations {
	int (*controllers)(aac_controller **);
	int (*controller_name)(char *, int);
	int (*containers)(const char *, aac_container **);
	int (*delete_container)(const char *, int, int);
	int (*change_spare[2])(const char *, int, int);
	int (*show_spare)(const char *, int);
	int (*device_name)(const char *, int, char *);
	int (*raid0)(const char *, const char *, int, int, int, int, ...);
	int (*raid1)(const char *, const char *, int, int, int, int);
	int (*raid5)(const char *, const char *, int, int, int, int, int, int, ...);
	int (*raid10)(const char *, const char *, int, int, int, ...);
	int (*disks)(const char *, aac_disk **);
	int (*space)(const char *, int, aac_space **);
	int (*partitions)(const char *, aac_partition **);
	int (*initialize)(const char *, int, int, int);
	int (*defects)(const char *, int, int *, int *);
	int (*tasks)(const char *, aac_task **);
	aac_task *(*container_task)(const char *, int);
};

const struct raid_operations raid_operations = {
	Aac_Get_Controller_List,
	Aac_Get_Controller_Name,
	Aac_Get_Container_List,
	Aac_Container_Delete,
	{Aac_Container_Set_Failover, Aac_Container_Remove_Failover},
	Aac_Container_Show_Failover,
	Aac_Get_Container_Corresponding_Disk_Name,
	Aac_Create_Raid0,
	Aac_Create_Raid1,
	Aac_Create_Raid5,
	Aac_Create_Raid10,
	Aac_Get_Disk_List,
	Aac_Disk_Show_Space,
	Aac_Disk_Show_Partition,
	Aac_Disk_Initialize,
	Aac_Disk_Show_Defect,
	Aac_Get_Task_List,
	Aac_Get_Container_Task,
};

struct raid_releases {
	int (*controllers)(aac_controller *);
	int (*containers)(aac_container *);
	int (*disks)(aac_disk *);
	int (*space)(aac_space *);
	int (*partitions)(aac_partition *);
	int (*tasks)(aac_task *);
};

const struct raid_releases raid_releases = {
	Aac_Clear_Controller_List, Aac_Clear_Container_List,      Aac_Clear_Disk_List,
	Aac_Clear_Disk_Space_List, Aac_Clear_Disk_Partition_List, Aac_Clear_Task_List,
};

struct raid_parsers {
	int (*controllers)(const char *, aac_controller **);
	int (*creation)(const char *, int);
	int (*disks)(const char *, aac_disk **);
	int (*initialize)(const char *);
	int (*defects)(const char *, int *, int *);
	int (*space)(const char *, int, int, int, aac_space **);
	int (*partitions)(const char *, aac_partition **);
	int (*tasks)(const char *, aac_task **);
};

const struct raid_parsers raid_parsers = {
	AnalyzeControllerFile,     Analyze_Create_Raid_Created_File,
	AnalyzeDiskFile,           AnalyzeDiskInitializeFile,
	AnalyzeDiskShowDefectFile, AnalyzeDiskShowSpaceFile,
	AnalyzePartitionFile,      AnalyzeTaskFile,
};
