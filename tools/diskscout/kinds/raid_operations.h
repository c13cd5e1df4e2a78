// SPDX-License-Identifier: Apache-2.0
// The plug-in's RAID operations that ask and change nothing, and their answers as bytes: they are called in a
// process of their own.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_RAID_OPERATIONS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_RAID_OPERATIONS_H

#include "raid_site.h"
#include "worker.h"

#include <cstddef>
#include <cstring>
#include <optional>
#include <type_traits>
#include <vector>

// All of them, under the names that the plug-in exports.
struct raid_operations_t {
	decltype(&Aac_Get_Container_List) containers;
	decltype(&Aac_Clear_Container_List) clear_containers;
	decltype(&Aac_Get_Container_Corresponding_Disk_Name) device_of;
	decltype(&Aac_Get_Disk_List) disks;
	decltype(&Aac_Clear_Disk_List) clear_disks;
	decltype(&Aac_Disk_Show_Space) spaces;
	decltype(&Aac_Clear_Disk_Space_List) clear_spaces;
	decltype(&Aac_Disk_Show_Partition) pieces;
	decltype(&Aac_Clear_Disk_Partition_List) clear_pieces;
	decltype(&Aac_Disk_Show_Defect) defects;
	decltype(&Aac_Get_Task_List) tasks;
	decltype(&Aac_Clear_Task_List) clear_tasks;
};

// None when it does not export all of them.
std::optional<raid_operations_t> operations_of(const plugin_t &plugin);

// ---- in the process for it: each tells its rows ----

void tell_containers(const raid_operations_t &by, const char *controller, const worker_link_t &to);
void tell_disks(const raid_operations_t &by, const char *controller, const worker_link_t &to);
void tell_spaces(const raid_operations_t &by, const char *controller, int disk, const worker_link_t &to);
void tell_pieces(const raid_operations_t &by, const char *controller, const worker_link_t &to);
void tell_tasks(const raid_operations_t &by, const char *controller, const worker_link_t &to);
void tell_defects(const raid_operations_t &by, const char *controller, int disk, const worker_link_t &to);

// ---- and what came of it ----

// In front of the rows.
struct alignas(std::max_align_t) raid_answer_t {
	int result;
};

template <typename Row> raid_list_t<Row> list_from(const worked_t &worked)
{
	static_assert(std::is_trivially_copyable_v<Row>);
	raid_list_t<Row> list;
	list.from_operations = true;
	list.failed = !worked.is_done;
	list.is_timed_out = worked.is_timed_out;
	list.failure = worked.failure;
	raid_answer_t answer = {AAC_RUN_FAILED};
	if (worked.count >= sizeof answer) {
		memcpy(&answer, worked.result(), sizeof answer);
		list.rows.resize((worked.count - sizeof answer) / sizeof(Row));
		if (!list.rows.empty())
			memcpy(list.rows.data(), worked.result() + sizeof answer,
			       list.rows.size() * sizeof(Row));
	}
	list.result = list.failed ? AAC_RUN_FAILED : answer.result;
	if (list.result < 0 && !list.failed) {
		list.failed = true;
		list.failure = words_of_result(list.result);
	}
	return list;
}

#endif
