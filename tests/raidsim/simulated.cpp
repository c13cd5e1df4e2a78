// SPDX-License-Identifier: Apache-2.0
#include "simulated.h"

#include "described.h"
#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_task.h"

#include <math.h>

const char *const AAC0 = "aac0";
const int SPARE = GetC_ID_L(0, 4, 0);

int disk_at(int channel, int id)
{
	return GetC_ID_L(channel, id, 0);
}

std::string joined(std::initializer_list<long long> fields)
{
	std::string text;
	for (const long long field : fields)
		text += (text.empty() ? "" : "|") + std::to_string(field);
	return text;
}

std::string containers(const char *controller)
{
	aac_container *head = nullptr;
	const int count = Aac_Get_Container_List(controller, &head);
	const std::string text = std::to_string(count) + "\n" + described(head);
	Aac_Clear_Container_List(head);
	return text;
}

std::string controllers()
{
	aac_controller *head = nullptr;
	std::string text = std::to_string(Aac_Get_Controller_List(&head)) + "\n";
	for (const aac_controller *c = head; c; c = c->next)
		text += std::to_string(c->ControllerID) + "|" + c->Adapter_Name + "|" + c->Adapter_Type +
		        "|" + joined({c->Availability, c->Clustering}) + "\n";
	Aac_Clear_Controller_List(head);
	return text;
}

std::string disks()
{
	aac_disk *head = nullptr;
	std::string text = std::to_string(Aac_Get_Disk_List(AAC0, &head)) + "\n";
	for (const aac_disk *d = head; d; d = d->next)
		text += address(d->C_ID_L) + "|" + d->VendorID + "|" + d->ProductID + "|" +
		        joined({d->Device_Type, d->Blocks, d->BytesPerBlock, d->Usage, d->Shared, d->Rate}) +
		        "\n";
	Aac_Clear_Disk_List(head);
	return text;
}

std::string space(int at)
{
	aac_space *head = nullptr;
	std::string text = std::to_string(Aac_Disk_Show_Space(AAC0, at, &head));
	for (const aac_space *s = head; s; s = s->next)
		text += " " + joined({s->nOffset, s->nFreeSpace});
	Aac_Clear_Disk_Space_List(head);
	return text;
}

std::string partitions()
{
	aac_partition *head = nullptr;
	std::string text = std::to_string(Aac_Disk_Show_Partition(AAC0, &head)) + "\n";
	for (const aac_partition *p = head; p; p = p->next) {
		text += address(p->C_ID_L) + "|" +
		        joined({p->nOffset, p->nSize, p->bContainerID, p->ContainerType,
		                p->nMultilevelContainerID, p->nMultilevelContainerType,
		                p->nReadWriteAttribute}) +
		        "\n";
	}
	Aac_Clear_Disk_Partition_List(head);
	return text;
}

// Done in thousandths: what the tool prints has tenths of a percent.
std::string described(const aac_task *head)
{
	std::string text;
	for (const aac_task *t = head; t; t = t->next)
		text += joined({t->TaskId, t->Function, lroundf(t->Done * 1000), t->ContainerID, t->State}) +
		        "\n";
	return text;
}

std::string tasks()
{
	aac_task *head = nullptr;
	const int count = Aac_Get_Task_List(AAC0, &head);
	const std::string text = std::to_string(count) + "\n" + described(head);
	Aac_Clear_Task_List(head);
	return text;
}

std::string defects(int at)
{
	int primary = 4711;
	int grown = 4711;
	const int result = Aac_Disk_Show_Defect(AAC0, at, &primary, &grown);
	return joined({result, primary, grown});
}

std::string pair_of(int first, int second)
{
	return container(first, "Mirror", 1024, 0, "/dev/sdf", "",
	                 piece("0:02:0", 2097216, 1024) + piece("0:03:0", 2097216, 1024)) +
	       container(second, "Mirror", 1024, 0, "/dev/sdg", "",
	                 piece("1:03:0", 64, 1024) + piece("1:02:0", 64, 1024));
}

// ---- every way of painting ----

// A plain tool begins its rows with the number, or a filter sees to it.
const way_t WAYS[] = {
	{"WithoutBlank", "noblank", "cat \"$1\" >\"$2\"\n"},
	{"WithBlank", "blank", "sed 's/^ \\([^ ]\\)/\\1/' \"$1\" >\"$2\"\n"},
	{"Painted", "terminal,status,blank", nullptr},
	{"PagesOf1", "terminal,status,pager=1,noblank", nullptr},
	{"PagesOf3", "terminal,pager=3,blank", nullptr},
	{"PagesOf7", "status,pager=7,noblank", nullptr},
};

void PrintTo(const way_t &way, std::ostream *out)
{
	*out << way.name;
}

const std::string SYSTEM_ROW = "0|2|0:0:0,0:1:0|1|10240|0|5|0:4:0|system\n";
const std::string VOLUME_ROW = "1|1|1:10:0|4|1536|0|9|-1|\n";
const std::string BIG_ROWS = "2|2|24,25|3|4096|64|5|-1|big data set\n"
			     "24|2|0:2:0,0:3:0|1|2048|0|5|-1|\n"
			     "25|2|1:0:0,1:1:0|1|2048|0|5|-1|\n";
const std::string FIVE_ROW = "3|3|1:0:0,1:1:0,1:2:0|2|1000|32|4|-1|five\n";
const std::string QUARTER_ROW = "10|4|0:7:0,0:7:0,0:7:0,0:7:0|4|4|0|8|-1|quarter\n";
