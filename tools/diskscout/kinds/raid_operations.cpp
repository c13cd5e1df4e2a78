// SPDX-License-Identifier: Apache-2.0
// The plug-in's RAID operations that ask and change nothing.
#include "raid_operations.h"

#include <algorithm>
#include <climits>
#include <cstdint>

std::optional<raid_operations_t> operations_of(const plugin_t &plugin)
{
	raid_operations_t found = {};
	const auto find = [&](auto &operation, const char *name) {
		operation =
			plugin.symbol_if_any<std::remove_pointer_t<std::decay_t<decltype(operation)>>>(name);
		return operation != nullptr;
	};
#define FOUND(operation, exported) find(found.operation, #exported)
	const bool are_all =
		FOUND(containers, Aac_Get_Container_List) &&
		FOUND(clear_containers, Aac_Clear_Container_List) &&
		FOUND(device_of, Aac_Get_Container_Corresponding_Disk_Name) &&
		FOUND(disks, Aac_Get_Disk_List) && FOUND(clear_disks, Aac_Clear_Disk_List) &&
		FOUND(spaces, Aac_Disk_Show_Space) && FOUND(clear_spaces, Aac_Clear_Disk_Space_List) &&
		FOUND(pieces, Aac_Disk_Show_Partition) &&
		FOUND(clear_pieces, Aac_Clear_Disk_Partition_List) && FOUND(defects, Aac_Disk_Show_Defect) &&
		FOUND(tasks, Aac_Get_Task_List) && FOUND(clear_tasks, Aac_Clear_Task_List);
#undef FOUND
	return are_all ? std::optional(found) : std::nullopt;
}

// ---- records ----

// As a query's record has it: the low 32 bits, as a signed number.
static long long low32(long long bytes)
{
	return static_cast<std::int32_t>(static_cast<std::uint32_t>(bytes));
}

static long long in_bytes(long long units, long long size_of_unit)
{
	return static_cast<long long>(static_cast<unsigned long long>(units) *
	                              static_cast<unsigned long long>(size_of_unit));
}

constexpr long long KILOBYTE = 1024, MEGABYTE = 1024 * KILOBYTE;

// What could not be read is below 0, what is beyond the field the largest number of it.
static long long told(int units, long long size_of_unit)
{
	return units < 0 || units == INT_MAX ? static_cast<long long>(NOT_TOLD) : units * size_of_unit;
}

template <std::size_t To, std::size_t From>
static void copy_text(char (&to)[To], const char (&from)[From], std::size_t most = To - 1)
{
	const std::size_t count = std::min({strnlen(from, From), most, To - 1});
	memcpy(to, from, count);
	to[count] = '\0';
}

static raid_container_t row_of(const aac_container &c)
{
	constexpr std::size_t LABEL_OF_RECORD = 8;
	raid_container_t row{};
	row.record.nRaidID = c.nCntnerID;
	row.record.nDiskNumber = c.nDiskNumber;
	static_assert(sizeof row.record.nPosition == sizeof c.C_ID_L, "slot for slot");
	memcpy(row.record.nPosition, c.C_ID_L, sizeof c.C_ID_L);
	row.record.RaidType = c.Container_Type;
	// None that the tool has printed is 0.
	row.total_size = c.TotalSize == 0 ? static_cast<long long>(NOT_TOLD) : told(c.TotalSize, MEGABYTE);
	row.record.nTotalSize = low32(in_bytes(c.TotalSize, MEGABYTE));
	row.record.nStripeSize = in_bytes(c.StripeSize, KILOBYTE);
	row.record.Usage = c.Usage;
	row.record.nHotSpare = c.HotSpare;
	copy_text(row.record.szLabel, c.Label, LABEL_OF_RECORD);
	copy_text(row.label, c.Label);
	return row;
}

static raid_disk_t row_of(const aac_disk &d)
{
	raid_disk_t row{};
	row.record.nPosition = d.C_ID_L;
	copy_text(row.record.szVendor, d.VendorID);
	copy_text(row.record.szModel, d.ProductID);
	row.record.DeviceType = d.Device_Type;
	row.record.nBlocks = d.Blocks;
	row.record.nBytesPerBlock = d.BytesPerBlock;
	row.record.Usage = d.Usage;
	row.record.Shared = d.Shared;
	row.record.nRate = d.Rate;
	return row;
}

static raid_space_t row_of(const aac_space &s)
{
	raid_space_t row{};
	row.offset = told(s.nOffset, KILOBYTE);
	row.free_space = told(s.nFreeSpace, KILOBYTE);
	row.record.nOffset = low32(in_bytes(s.nOffset, KILOBYTE));
	row.record.nFreeSpace = low32(in_bytes(s.nFreeSpace, KILOBYTE));
	return row;
}

static raid_piece_t row_of(const aac_partition &p)
{
	raid_piece_t row{};
	row.record.nPosition = p.C_ID_L;
	row.record.nOffset = in_bytes(p.nOffset, KILOBYTE);
	row.record.nSize = in_bytes(p.nSize, KILOBYTE);
	row.record.bRaidID = p.bContainerID;
	row.record.RaidType = p.ContainerType;
	row.record.nMultilevelRaidID = p.nMultilevelContainerID;
	row.record.MultilevelType = p.nMultilevelContainerType;
	row.record.ReadWriteAttribute = p.nReadWriteAttribute;
	return row;
}

static raid_task_t row_of(const aac_task &t)
{
	raid_task_t row{};
	row.record = t;
	row.record.next = nullptr;
	return row;
}

// ---- answers ----

template <typename Row> static void tell(const worker_link_t &to, int result, const std::vector<Row> &rows)
{
	const raid_answer_t answer = {result};
	std::vector<char> bytes(sizeof answer + rows.size() * sizeof(Row));
	memcpy(bytes.data(), &answer, sizeof answer);
	if (!rows.empty())
		memcpy(bytes.data() + sizeof answer, rows.data(), rows.size() * sizeof(Row));
	to.result(bytes.data(), bytes.size());
}

template <typename Record> static auto taken(Record *head, int (*clear)(Record *))
{
	std::vector<decltype(row_of(*head))> rows;
	for (const Record *record = head; record; record = record->next)
		rows.push_back(row_of(*record));
	clear(head);
	return rows;
}

// Members of other containers have none.
static bool may_have_device(const raid_container_t &c)
{
	constexpr int FIRST_MEMBER = 24;
	return c.record.nRaidID >= 0 && c.record.nRaidID < FIRST_MEMBER;
}

// What is no answer. A container without a device, or one that has gone meanwhile, is one.
static bool is_unanswered(int result)
{
	return result == AAC_RUN_FAILED || result == AAC_CONTROLLER_UNUSABLE || result == AAC_CONTROLLER_BUSY;
}

static int ask_for_device(const raid_operations_t &by, const char *controller, raid_container_t &c)
{
	const int result = by.device_of(controller, c.record.nRaidID, c.device);
	if (result != AAC_OK)
		c.device[0] = '\0';
	// A name that stands alone in its line comes with the line's end.
	for (std::size_t length = strlen(c.device); length > 0 && strchr("\r\n\t ", c.device[length - 1]);)
		c.device[--length] = '\0';
	return result;
}

// The devices are more runs of the tool. When they take too long the containers are known all the same.
void tell_containers(const raid_operations_t &by, const char *controller, const worker_link_t &to)
{
	aac_container *head = nullptr;
	int result = by.containers(controller, &head);
	auto rows = taken(head, by.clear_containers);
	tell(to, result, rows);
	if (result < 0)
		return;
	for (raid_container_t &row : rows) {
		if (!may_have_device(row))
			continue;
		const int of_device = ask_for_device(by, controller, row);
		if (is_unanswered(of_device))
			result = of_device;
		tell(to, result, rows);
	}
}

void tell_disks(const raid_operations_t &by, const char *controller, const worker_link_t &to)
{
	aac_disk *head = nullptr;
	const int result = by.disks(controller, &head);
	tell(to, result, taken(head, by.clear_disks));
}

void tell_spaces(const raid_operations_t &by, const char *controller, int disk, const worker_link_t &to)
{
	aac_space *head = nullptr;
	const int result = by.spaces(controller, disk, &head);
	tell(to, result, taken(head, by.clear_spaces));
}

void tell_pieces(const raid_operations_t &by, const char *controller, const worker_link_t &to)
{
	aac_partition *head = nullptr;
	const int result = by.pieces(controller, &head);
	tell(to, result, taken(head, by.clear_pieces));
}

void tell_tasks(const raid_operations_t &by, const char *controller, const worker_link_t &to)
{
	aac_task *head = nullptr;
	const int result = by.tasks(controller, &head);
	tell(to, result, taken(head, by.clear_tasks));
}

void tell_defects(const raid_operations_t &by, const char *controller, int disk, const worker_link_t &to)
{
	raid_defects_t row = {nullptr, disk, -1, -1, AAC_OK};
	row.result = by.defects(controller, disk, &row.primary, &row.grown);
	tell(to, AAC_OK, std::vector<raid_defects_t>{row});
}
