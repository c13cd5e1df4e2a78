// SPDX-License-Identifier: Apache-2.0
// Lists that go from one process to another: all that a record points to goes with it.
#include "packed_list.h"

#include "diskscout_block.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <string>

using testing::IsNull;
using testing::StrEq;

namespace
{

// Bytes that are gone afterwards, as those of the process that asked are.
std::vector<char> packed_and_gone(UINT code, std::vector<char> memory, const list_head_t &list)
{
	std::vector<char> bytes = pack(query_of(code), list);
	std::fill(memory.begin(), memory.end(), '#');
	return bytes;
}

// A record of which every text is there, and is the name of its member.
struct named_text_t {
	std::size_t at;
	const char *name;
};

#define TEXT_OF(record, member)                                                                              \
	{                                                                                                    \
		offsetof(record, member), #member                                                            \
	}

const named_text_t DEVICE_TEXTS[] = {
	TEXT_OF(block_device, name),
	TEXT_OF(block_device, node),
	TEXT_OF(block_device, kind),
	TEXT_OF(block_device, disk),
	TEXT_OF(block_device, transport),
	TEXT_OF(block_device, vendor),
	TEXT_OF(block_device, model),
	TEXT_OF(block_device, model_source),
	TEXT_OF(block_device, serial),
	TEXT_OF(block_device, serial_source),
	TEXT_OF(block_device, firmware),
	TEXT_OF(block_device, firmware_source),
	TEXT_OF(block_device, wwn),
	TEXT_OF(block_device, eui64),
	TEXT_OF(block_device, nguid),
	TEXT_OF(block_device, uuid),
	TEXT_OF(block_device, controller_pci),
	TEXT_OF(block_device, state),
	TEXT_OF(block_device, dm_name),
	TEXT_OF(block_device, dm_uuid),
	TEXT_OF(block_device, dm_kind),
	TEXT_OF(block_device, dm_target),
	TEXT_OF(block_device, backing_file),
};
const named_text_t LINK_TEXTS[] = {
	TEXT_OF(block_link, upper),   TEXT_OF(block_link, lower), TEXT_OF(block_link, relation),
	TEXT_OF(block_link, address), TEXT_OF(block_link, state), TEXT_OF(block_link, access),
};
const named_text_t PARTITION_TEXTS[] = {
	TEXT_OF(block_partition, name),
	TEXT_OF(block_partition, type),
	TEXT_OF(block_partition, uuid),
	TEXT_OF(block_partition, label),
};
const named_text_t CONTENT_TEXTS[] = {
	TEXT_OF(block_content, name),     TEXT_OF(block_content, source), TEXT_OF(block_content, table),
	TEXT_OF(block_content, table_id), TEXT_OF(block_content, usage),  TEXT_OF(block_content, type),
	TEXT_OF(block_content, label),    TEXT_OF(block_content, uuid),   TEXT_OF(block_content, uuid_sub),
	TEXT_OF(block_content, version),
};
const named_text_t MOUNT_TEXTS[] = {
	TEXT_OF(block_mount, kind),          TEXT_OF(block_mount, source),      TEXT_OF(block_mount, type),
	TEXT_OF(block_mount, root),          TEXT_OF(block_mount, mount_point), TEXT_OF(block_mount, options),
	TEXT_OF(block_mount, super_options),
};
const named_text_t MEMBER_TEXTS[] = {
	TEXT_OF(block_member, name),
	TEXT_OF(block_member, role),
	TEXT_OF(block_member, state),
};
const named_text_t ARRAY_TEXTS[] = {
	TEXT_OF(block_array, name),   TEXT_OF(block_array, uuid),        TEXT_OF(block_array, metadata),
	TEXT_OF(block_array, level),  TEXT_OF(block_array, state),       TEXT_OF(block_array, sync_action),
	TEXT_OF(block_array, bitmap), TEXT_OF(block_array, consistency),
};

// The texts of one record, in memory that can be wiped.
template <typename Record, std::size_t Count>
void give_texts(Record &record, const named_text_t (&texts)[Count], std::vector<std::string> &memory)
{
	record.record_size = sizeof record;
	for (const named_text_t &text : texts) {
		memory.emplace_back(text.name);
		const char *const pointer = memory.back().c_str();
		memcpy(reinterpret_cast<char *>(&record) + text.at, &pointer, sizeof pointer);
	}
}

template <typename Record, std::size_t Count>
void expect_texts(const Record &record, const named_text_t (&texts)[Count])
{
	for (const named_text_t &text : texts) {
		const char *pointer;
		memcpy(&pointer, reinterpret_cast<const char *>(&record) + text.at, sizeof pointer);
		EXPECT_THAT(pointer, StrEq(text.name));
	}
}

struct texts_memory_t {
	texts_memory_t() { texts.reserve(64); }
	void wipe()
	{
		for (std::string &text : texts)
			std::fill(text.begin(), text.end(), '#');
	}
	std::vector<std::string> texts;
};

template <typename Record> const Record *first_of(const list_head_t &list)
{
	return static_cast<const Record *>(list.first);
}

template <typename Record, std::size_t Count>
std::vector<char> packed_with_texts(UINT code, Record record, const named_text_t (&texts)[Count])
{
	texts_memory_t memory;
	give_texts(record, texts, memory.texts);
	std::vector<char> bytes = pack(query_of(code), {&record, 1, 0, false});
	memory.wipe();
	return bytes;
}

template <typename Record, std::size_t Count>
void expect_all_texts(UINT code, const named_text_t (&texts)[Count])
{
	std::vector<char> bytes = packed_with_texts(code, Record{}, texts);
	const list_head_t list = unpack(query_of(code), bytes.data());
	ASSERT_EQ(list.length, 1);
	expect_texts(*first_of<Record>(list), texts);
}

} // namespace

TEST(PackedList, EveryTextGoesWithItsRecord)
{
	expect_all_texts<block_device>(CMD_GET_BLOCK_DEVICES, DEVICE_TEXTS);
	expect_all_texts<block_link>(CMD_GET_BLOCK_LINKS, LINK_TEXTS);
	expect_all_texts<block_content>(CMD_GET_BLOCK_CONTENTS, CONTENT_TEXTS);
	expect_all_texts<block_mount>(CMD_GET_BLOCK_MOUNTS, MOUNT_TEXTS);
	expect_all_texts<block_array>(CMD_GET_BLOCK_ARRAYS, ARRAY_TEXTS);
}

TEST(PackedList, AbsentTextsAndListsStayAbsent)
{
	block_device device = {};
	device.record_size = sizeof device;
	std::vector<char> bytes = pack(query_of(CMD_GET_BLOCK_DEVICES), {&device, 1, 0, false});
	const auto *const first =
		first_of<block_device>(unpack(query_of(CMD_GET_BLOCK_DEVICES), bytes.data()));
	EXPECT_THAT(first->name, IsNull());
	EXPECT_THAT(first->links, IsNull());
	EXPECT_THAT(first->next, IsNull());
}

TEST(PackedList, InnerListsGoInTheirOrder)
{
	texts_memory_t memory;
	block_partition second = {}, first = {};
	give_texts(second, PARTITION_TEXTS, memory.texts);
	give_texts(first, PARTITION_TEXTS, memory.texts);
	first.number = 1;
	second.number = 2;
	first.next = &second;
	block_content content = {};
	give_texts(content, CONTENT_TEXTS, memory.texts);
	content.partitions = &first;
	std::vector<char> bytes = pack(query_of(CMD_GET_BLOCK_CONTENTS), {&content, 1, 0, false});
	memory.wipe();
	memset(static_cast<void *>(&second), '#', sizeof second);
	const auto *const got =
		first_of<block_content>(unpack(query_of(CMD_GET_BLOCK_CONTENTS), bytes.data()));
	ASSERT_EQ(got->partitions->number, 1);
	ASSERT_EQ(got->partitions->next->number, 2);
	expect_texts(*got->partitions->next, PARTITION_TEXTS);
	EXPECT_THAT(got->partitions->next->next, IsNull());
}

TEST(PackedList, MembersAndTextListsGo)
{
	texts_memory_t memory;
	block_member member = {};
	give_texts(member, MEMBER_TEXTS, memory.texts);
	block_array array = {};
	array.record_size = sizeof array;
	array.members = &member;
	std::vector<char> bytes = pack(query_of(CMD_GET_BLOCK_ARRAYS), {&array, 1, 0, false});
	memory.wipe();
	expect_texts(*first_of<block_array>(unpack(query_of(CMD_GET_BLOCK_ARRAYS), bytes.data()))->members,
	             MEMBER_TEXTS);

	block_text lower = {sizeof lower, nullptr, "sda1"};
	block_mount mount = {};
	mount.record_size = sizeof mount;
	mount.devices = &lower;
	bytes = pack(query_of(CMD_GET_BLOCK_MOUNTS), {&mount, 1, 0, false});
	EXPECT_THAT(
		first_of<block_mount>(unpack(query_of(CMD_GET_BLOCK_MOUNTS), bytes.data()))->devices->text,
		StrEq("sda1"));
	block_device device = {};
	device.record_size = sizeof device;
	device.links = &lower;
	bytes = pack(query_of(CMD_GET_BLOCK_DEVICES), {&device, 1, 0, false});
	EXPECT_THAT(
		first_of<block_device>(unpack(query_of(CMD_GET_BLOCK_DEVICES), bytes.data()))->links->text,
		StrEq("sda1"));
}

// A library that is older than we are: its records end earlier, and so does their memory.
TEST(PackedList, ShorterRecordsAreReadToTheirEnd)
{
	constexpr std::size_t SHORT = offsetof(block_device, model);
	block_device whole = {};
	whole.record_size = SHORT;
	whole.name = "sda";
	std::vector<char> cut(SHORT);
	memcpy(cut.data(), &whole, SHORT);
	std::vector<char> bytes = packed_and_gone(CMD_GET_BLOCK_DEVICES, cut, {cut.data(), 1, 0, false});
	const auto *const got = first_of<block_device>(unpack(query_of(CMD_GET_BLOCK_DEVICES), bytes.data()));
	EXPECT_EQ(got->record_size, SHORT);
	EXPECT_THAT(got->name, StrEq("sda"));
}

TEST(PackedList, BothTheLinksAndTheLengthEndAList)
{
	STORAGE_DISK_LIST second = {}, first = {};
	first.next = &second;
	first.nDiskID = 7;
	second.next = &first; // a ring
	std::vector<char> bytes = pack(query_of(CMD_GET_DISKS), {&first, 3, 0, false});
	const list_head_t list = unpack(query_of(CMD_GET_DISKS), bytes.data());
	const auto *const third = first_of<STORAGE_DISK_LIST>(list)->next->next;
	EXPECT_EQ(third->nDiskID, 7U);
	EXPECT_THAT(third->next, IsNull());

	first.next = nullptr;
	bytes = pack(query_of(CMD_GET_DISKS), {&first, 5, 0, false});
	EXPECT_THAT(first_of<STORAGE_DISK_LIST>(unpack(query_of(CMD_GET_DISKS), bytes.data()))->next,
	            IsNull());
	bytes = pack(query_of(CMD_GET_DISKS), {&first, -1, 0, false});
	EXPECT_THAT(unpack(query_of(CMD_GET_DISKS), bytes.data()).first, IsNull());
}

TEST(PackedList, FailureAndItsErrorGoWithWhatWasFound)
{
	STORAGE_PART_LIST part = {};
	part.nSize = 5;
	std::vector<char> bytes = pack(query_of(CMD_GET_PARTITIONS), {&part, 1, EIO, true});
	const list_head_t list = unpack(query_of(CMD_GET_PARTITIONS), bytes.data());
	EXPECT_TRUE(list.has_failed);
	EXPECT_EQ(list.error, EIO);
	EXPECT_EQ(first_of<STORAGE_PART_LIST>(list)->nSize, 5U);
}
