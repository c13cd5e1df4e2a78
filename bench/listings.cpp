// SPDX-License-Identifier: Apache-2.0
#include "listings.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_task.h"

#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

template <typename Record> static int release(int result, Record *head, int (*clear)(Record *))
{
	int count = 0;
	for (const Record *record = head; record; record = record->next)
		count++;
	clear(head);
	return result == 0 ? count : -1;
}

static int parse_controllers(const char *path)
{
	aac_controller *head = nullptr;
	const int result = AnalyzeControllerFile(path, &head);
	return release(result, head, Aac_Clear_Controller_List);
}

static int parse_containers(const char *path)
{
	aac_container *head = nullptr;
	const int result = Get_Container_List_From_File("aac0", path, &head);
	return release(result, head, Aac_Clear_Container_List);
}

static int parse_disks(const char *path)
{
	aac_disk *head = nullptr;
	const int result = AnalyzeDiskFile(path, &head);
	return release(result, head, Aac_Clear_Disk_List);
}

static int parse_spaces(const char *path)
{
	aac_space *head = nullptr;
	const int result = AnalyzeDiskShowSpaceFile(path, 0, 1, 0, &head);
	return release(result, head, Aac_Clear_Disk_Space_List);
}

static int parse_partitions(const char *path)
{
	aac_partition *head = nullptr;
	const int result = AnalyzePartitionFile(path, &head);
	return release(result, head, Aac_Clear_Disk_Partition_List);
}

static int parse_tasks(const char *path)
{
	aac_task *head = nullptr;
	const int result = AnalyzeTaskFile(path, &head);
	return release(result, head, Aac_Clear_Task_List);
}

// A blank line and the prompt end every listing.
static constexpr char TAIL[] = "\nAAC0>\n";

static constexpr char CONTROLLERS[] = R"(CLI>
Executing: controller list
Adapter Name  Adapter Type           Availability  Clustering
------------  ---------------------  ------------  ----------
)";
static constexpr char CONTROLLER_ROWS[] = R"(aac0          EXAMPLE 2200S          read/write    No
)";

static constexpr char CONTAINERS[] = R"(AAC0>
Executing: container list
Num          Total  Oth Stripe          Scsi   Partition
Label Type   Size   Ctr Size   Usage   C:ID:L Offset:Size
----- ------ ------ --- ------ ------- ------ -------------
)";
static constexpr char CONTAINER_ROWS[] = R"(0    Mirror 74.5GB            Open    0:02:0 64.0KB:74.5GB
/dev/sda             data             0:03:0 64.0KB:74.5GB

1    RAID-5 30.0GB     64KB   Valid   1:01:0 64.0KB:15.0GB
/dev/sdb             mail             1:02:0 64.0KB:15.0GB
                                      1:03:0 64.0KB:15.0GB

2    Stripe 67.8GB     64KB   Open
/dev/sdc             big
24   Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB
                                      0:05:0 64.0KB:33.9GB
25   Mirror 33.9GB            Open    1:04:0 64.0KB:33.9GB
                                      1:05:0 64.0KB:33.9GB

)";

static constexpr char DISKS[] = R"(AAC0>
Executing: disk list /full=TRUE
C:ID:L  Device Type     Removable media  Vendor-ID Product-ID        Rev   Blocks    Bytes/Block Usage
------  --------------  ---------------  --------- ----------------  ----- --------- ----------- ------------
)";
static constexpr char DISK_ROWS[] =
	"0:00:0   Disk            N                ACME      EX103073FL3800    SA1B  143374805 512         "
	"Initialized      NO     320 \n";

static constexpr char SPACES[] = R"(AAC0>
Executing: disk show space

Scsi C:ID:L Usage      Size
----------- ---------- -------------
)";
static constexpr char SPACE_ROWS[] = R"(  0:01:0     Container 64.0KB:33.8GB
  0:01:0     Free      33.8GB:59.0KB
)";

static constexpr char PARTITIONS[] = R"(AAC0>
Executing: disk show partition
Scsi    Partition      Container  Container Multi-level  Multi-level
C:ID:L  Offset:Size    Num        Type     Num          Type     R/W
------  -------------  ---------  -------  -----------  -------  ---
)";
static constexpr char PARTITION_ROWS[] = R"(0:00:0  64.0KB:33.8GB      24     Mirror        2     Stripe   RW
)";

static constexpr char TASKS[] = R"(AAC0>
Executing: task list
TaskId Function  Done%  Container State Specific1 Specific2
------ -------- ------- --------- ----- --------- ---------
)";
static constexpr char TASK_ROWS[] = R"(  106   Bld/Vfy   0.0%      1      RUN   00000000  00000000
)";

const std::vector<Listing> LISTINGS = {
	{"controllers", CONTROLLERS, CONTROLLER_ROWS, 1, parse_controllers},
	{"containers", CONTAINERS, CONTAINER_ROWS, 5, parse_containers},
	{"disks", DISKS, DISK_ROWS, 1, parse_disks},
	{"spaces", SPACES, SPACE_ROWS, 1, parse_spaces},
	{"partitions", PARTITIONS, PARTITION_ROWS, 1, parse_partitions},
	{"tasks", TASKS, TASK_ROWS, 1, parse_tasks},
};

ListingFile::ListingFile(const Listing &listing, size_t size)
    : listing_(listing), file_(memfd_create("listing", MFD_CLOEXEC)),
      path_("/proc/self/fd/" + std::to_string(file_))
{
	std::string text = listing.head;
	int records = 0;
	while (text.size() + strlen(listing.rows) + strlen(TAIL) <= size) {
		text += listing.rows;
		records += listing.records;
	}
	text += TAIL;
	size_ = text.size();
	if (write(file_, text.data(), size_) != static_cast<ssize_t>(size_) ||
	    listing.parse(path_.c_str()) != records)
		abort();
}

ListingFile::~ListingFile()
{
	close(file_);
}
