// The records that the operations on a controller build, one allocation each. Words of the tool are stored as
// codes: the accessors of aac_public translate both ways.
#ifndef DISKSCOUT_HWRAID_AAC_HARDRAID_H
#define DISKSCOUT_HWRAID_AAC_HARDRAID_H

#include "diskscout.h"

constexpr int NO_MEMBER = -1;

// A container: the controller's logical drive.
struct __tag_aac_container {
	int nCntnerID;      // 0 to 63; -1 when the tool printed none
	int nDiskNumber;    // members counted; may exceed those stored
	int C_ID_L[64];     // disk addresses; of a multi-level container the numbers of its members; unused:
	                    // NO_MEMBER
	int Container_Type; // KESTREL_HWRAID_TYPE
	int TotalSize;      // megabytes, rounded down; 0 when the tool printed none
	int StripeSize;     // kilobytes: 64, 32 or 16; 0 when the tool printed none
	int Usage;          // KESTREL_HWRAID_USAGE_TYPE
	int HotSpare;       // disk address, or -1
	char Label[32];
	struct __tag_aac_container *next;
};
typedef struct __tag_aac_container aac_container;

// A disk behind the controller.
struct __tag_aac_disk {
	int C_ID_L; // disk address
	char VendorID[32];
	char ProductID[32];
	int Device_Type; // 0 "Disk" to 9 "Network", -1 other: one less than KESTREL_HWRAID_DSK_TYPE
	long long Blocks;
	int BytesPerBlock;
	int Usage;  // KESTREL_HWRAID_DSK_USAGE
	int Shared; // KESTREL_HWRAID_DSK_SHARED_TYPE
	int Rate;   // transfer rate as the tool prints it
	struct __tag_aac_disk *next;
};
typedef struct __tag_aac_disk aac_disk;

// A free area of a disk, in kilobytes.
struct __tag_aac_space {
	int nOffset;
	int nFreeSpace;
	struct __tag_aac_space *next;
};
typedef struct __tag_aac_space aac_space;

// A piece of a disk that a container uses.
struct __tag_aac_partition {
	int C_ID_L;                   // disk address
	long long nOffset;            // kilobytes
	long long nSize;              // kilobytes
	int bContainerID;             // the container that owns it
	int ContainerType;            // KESTREL_HWRAID_TYPE
	int nMultilevelContainerID;   // the multi-level container above
	int nMultilevelContainerType; // KESTREL_HWRAID_PART_MULTILEVEL_TYPE
	int nReadWriteAttribute;      // KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_TYPE
	struct __tag_aac_partition *next;
};
typedef struct __tag_aac_partition aac_partition;

// A background task of the controller.
struct __tag_aac_task {
	int TaskId;
	int Function; // row of g_szTaskFunction, or -1
	float Done;   // 0 to 1
	int ContainerID;
	int State; // row of g_szTaskState, or -1
	struct __tag_aac_task *next;
};
typedef struct __tag_aac_task aac_task;

#endif
