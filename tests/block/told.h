// SPDX-License-Identifier: Apache-2.0
// Records as texts, field by field, so that two answers can be compared and their difference read.
#ifndef DISKSCOUT_TESTS_BLOCK_TOLD_H
#define DISKSCOUT_TESTS_BLOCK_TOLD_H

#include "diskscout_block.h"
#include "queries.h"
#include "record.h"

#include <gtest/gtest.h>

#include <errno.h>
#include <map>
#include <string>
#include <vector>

// Fields that are present, by name.
using told_t = std::map<std::string, std::string>;

inline void tell(told_t *told, const char *name, const char *text)
{
	if (text)
		(*told)[name] = text;
}

inline void tell(told_t *told, const char *name, long long number)
{
	if (number != BLOCK_ABSENT)
		(*told)[name] = std::to_string(number);
}

inline void tell(told_t *told, const char *name, const block_text *list)
{
	for (; list; list = list->next)
		(*told)[name] += std::string(list->text) + "\n";
}

#define TELL(field) tell(&told, #field, record.field)

inline told_t told_of(const block_device &record)
{
	told_t told;
	TELL(name), TELL(node), TELL(major), TELL(minor), TELL(kind), TELL(disk), TELL(partition_number);
	TELL(size), TELL(logical_sector), TELL(physical_sector), TELL(rotational), TELL(removable);
	TELL(hidden), TELL(read_only), TELL(transport), TELL(vendor), TELL(model), TELL(model_source);
	TELL(serial), TELL(serial_source), TELL(firmware), TELL(firmware_source), TELL(wwn), TELL(eui64);
	TELL(nguid), TELL(uuid), TELL(scsi_host), TELL(scsi_channel), TELL(scsi_target), TELL(scsi_lun);
	TELL(links), TELL(controller_pci), TELL(numa_node), TELL(state), TELL(dm_name), TELL(dm_uuid);
	TELL(dm_kind), TELL(dm_target), TELL(backing_file), TELL(under_root), TELL(under_boot);
	TELL(under_swap);
	return told;
}

inline told_t told_of(const block_link &record)
{
	told_t told;
	TELL(upper), TELL(lower), TELL(relation), TELL(address), TELL(state), TELL(access);
	return told;
}

#undef TELL

// All records of a query, in their order; a failed one has none.
struct query_answer_t {
	int result;
	int error;
	std::vector<told_t> records;
};

template <class Record> query_answer_t answer_of(int (*list)(void **, int *))
{
	void *head = nullptr;
	int count = 0;
	errno = 0;
	query_answer_t answer = {list(&head, &count), 0, {}};
	answer.error = errno;
	for (const auto *record = static_cast<const Record *>(head); record; record = record->next)
		answer.records.push_back(told_of(*record));
	EXPECT_EQ(answer.records.size(), static_cast<size_t>(count));
	release_list(&head);
	EXPECT_EQ(head, nullptr);
	return answer;
}

inline query_answer_t devices_told()
{
	return answer_of<block_device>(list_devices);
}

inline query_answer_t links_told()
{
	return answer_of<block_link>(list_links);
}

#endif
