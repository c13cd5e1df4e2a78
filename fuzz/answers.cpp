// SPDX-License-Identifier: Apache-2.0
// The parsers of the controller tool's output.
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_raid.h"
#include "hwraid/aacraid/aac_task.h"

#include <algorithm>
#include <initializer_list>
#include <string.h>

namespace
{

using Codes = std::initializer_list<int>;

// A stored code reads back as a word.
bool is_word(const char *word)
{
	return strcmp(word, "overflow") != 0;
}

std::string wrong_record(const aac_controller &record, int position)
{
	return broken({
		{record.ControllerID == position, "ControllerID"},
		{ends(record.Adapter_Name), "Adapter_Name"},
		{ends(record.Adapter_Type), "Adapter_Type"},
		{is_word(Controller_GetControllerAavailability(&record)), "Availability"},
		{is_word(Controller_GetControllerClustering(&record)), "Clustering"},
	});
}

// Members stand in the first slots, and none is stored that was not counted.
bool are_members(const aac_container &record)
{
	const int *end = record.C_ID_L + 64;
	const int *unused = std::find(record.C_ID_L, end, AAC_NO_MEMBER);
	return unused - record.C_ID_L <= record.nDiskNumber &&
	       std::all_of(unused, end, [](int slot) { return slot == AAC_NO_MEMBER; });
}

std::string wrong_record(const aac_container &record, int)
{
	const int stripe = record.StripeSize;
	return broken({
		{is_between(record.nCntnerID, -1, 63), "nCntnerID"},
		{are_members(record), "C_ID_L"},
		{is_between(record.Container_Type, -1, 5), "Container_Type"},
		{record.TotalSize >= 0, "TotalSize"},
		{stripe == 0 || stripe == 16 || stripe == 32 || stripe == 64, "StripeSize"},
		{is_between(record.Usage, -1, 9), "Usage"},
		{record.HotSpare == -1, "HotSpare"}, // there is no tool to ask
		{ends(record.Label), "Label"},
	});
}

std::string wrong_record(const aac_disk &record, int)
{
	return broken({
		{ends(record.VendorID), "VendorID"},
		{ends(record.ProductID), "ProductID"},
		{is_word(Disk_GetDeviceType(&record)), "Device_Type"},
		{is_word(Disk_GetUsage(&record)), "Usage"},
		{is_word(Disk_GetShared(&record)), "Shared"},
	});
}

std::string wrong_record(const aac_partition &record, int)
{
	return broken({
		{is_between(record.ContainerType, -1, 5), "ContainerType"},
		{is_between(record.nMultilevelContainerType, -1, 1), "nMultilevelContainerType"},
		{is_between(record.nReadWriteAttribute, 0, 3), "nReadWriteAttribute"},
	});
}

std::string wrong_record(const aac_task &record, int)
{
	return broken({
		{is_word(Task_GetFunction(&record)), "Function"},
		{is_word(Task_GetState(&record)), "State"},
	});
}

template <typename Record>
std::string check_list(Codes documented, int (*parse)(const char *, Record **), int (*clear)(Record *),
                       const char *path)
{
	Record *head = nullptr;
	std::string wrong = wrong_code(parse(path, &head), documented);
	int position = 0;
	for (const Record *record = head; record && wrong.empty(); record = record->next)
		wrong = wrong_record(*record, position++);
	clear(head);
	return wrong;
}

} // namespace

std::string check_controllers(const char *path)
{
	return check_list<aac_controller>({0, -100, -200, -300}, AnalyzeControllerFile,
	                                  Aac_Clear_Controller_List, path);
}

void use_no_tool()
{
	g_nHaveInit = 1;
	g_szCliFullName[0] = g_szFilterScript[0] = '\0';
}

// The question for each container's hot spare fails at once.
static int parse_containers(const char *path, aac_container **head)
{
	static const Host host("containers");
	const Visit visit(host); // where the files of a run go
	use_no_tool();
	return Get_Container_List_From_File("aac0", path, head);
}

std::string check_containers(const char *path)
{
	return check_list<aac_container>({0, -1, -100, -200, -300}, parse_containers,
	                                 Aac_Clear_Container_List, path);
}

std::string check_deletion(const char *path)
{
	return wrong_code(AnalyzeContainerDeleteFile(path), {0, -5, -100, -200, -300});
}

std::string check_failover(const char *path)
{
	return wrong_code(AnalyzeContainerSetFailoverFile(path), {0, -2, -5, -90, -100, -200, -300});
}

// An address or a code.
std::string check_spare(const char *path)
{
	const int result = AnalyzeContainerShowFailoverFile(path);
	return result >= 0 ? "" : wrong_code(result, {-2, -5, -10, -100, -200, -300});
}

std::string check_device(const char *path)
{
	std::vector<char> name(256, 'x');
	name[0] = '\0';
	const int result = AnalyzeContainerDiskNameFile(path, name.data());
	if (strnlen(name.data(), name.size()) == name.size())
		return "name without an end";
	if ((result == 0) != (name[0] == '/'))
		return "name and result";
	return wrong_code(result, {0, -5, -100, -200, -300});
}

std::string check_creation(const char *path)
{
	return wrong_code(Analyze_Create_Raid_Created_File(path, 0),
	                  {0, -3, -5, -20, -30, -70, -100, -200, -300});
}

std::string check_disks(const char *path)
{
	return check_list<aac_disk>({0, -100, -200, -300}, AnalyzeDiskFile, Aac_Clear_Disk_List, path);
}

std::string check_initialisation(const char *path)
{
	return wrong_code(AnalyzeDiskInitializeFile(path), {0, -2, -300});
}

std::string check_defects(const char *path)
{
	int primary = 0;
	int grown = 0;
	return wrong_code(AnalyzeDiskShowDefectFile(path, &primary, &grown),
	                  {0, -2, -6, -50, -100, -200, -300});
}

static int count_words(const std::string &content, const std::string &word)
{
	int count = 0;
	for (size_t at = content.find(word); at != std::string::npos; at = content.find(word, at + 1))
		count++;
	return count;
}

// Any two numbers are an area, but each has a row to itself that calls it free, and lies on one disk: these
// differ in one part of their address each.
std::string check_spaces(const char *path)
{
	static constexpr int DISKS[][3] = {{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 1, 1}, {1, 1, 1}};
	int areas = 0;
	for (const auto &disk : DISKS) {
		aac_space *head = nullptr;
		std::string wrong =
			wrong_code(AnalyzeDiskShowSpaceFile(path, disk[0], disk[1], disk[2], &head),
		                   {0, -2, -100, -200, -300});
		for (const aac_space *area = head; area; area = area->next)
			areas++;
		Aac_Clear_Disk_Space_List(head);
		if (!wrong.empty())
			return wrong;
	}
	return areas <= count_words(content_of(path), "Free") ? "" : "areas";
}

std::string check_partitions(const char *path)
{
	return check_list<aac_partition>({0, -2, -100, -200, -300}, AnalyzePartitionFile,
	                                 Aac_Clear_Disk_Partition_List, path);
}

std::string check_tasks(const char *path)
{
	return check_list<aac_task>({0, -100, -200, -300}, AnalyzeTaskFile, Aac_Clear_Task_List, path);
}
