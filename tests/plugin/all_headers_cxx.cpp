// SPDX-License-Identifier: Apache-2.0
// All exported headers in one source of C++, the other way round.
#include "diskscout_raid.h"

#include "diskscout.h"
#include "diskscout_block.h"

int all_headers_cxx();
int all_headers_cxx()
{
	const block_array array = {};
	const STORAGE_PART_LIST part = {};
	const aac_task task = {};
	return array.next != nullptr || part.next != nullptr || task.next != nullptr;
}
