// SPDX-License-Identifier: Apache-2.0
// The boundary: each command code goes to its query, null arguments and unknown codes go nowhere.
#include "diskscout_block.h"
#include "queries.h"
#include "record.h"

#include <errno.h>

static constexpr struct {
	UINT code; // of the query; one more releases its list
	int (*list)(void **result, int *length);
} QUERIES[] = {
	{CMD_GET_BLOCK_DEVICES, list_devices},   {CMD_GET_BLOCK_LINKS, list_links},
	{CMD_GET_BLOCK_CONTENTS, list_contents}, {CMD_GET_BLOCK_MOUNTS, list_mounts},
	{CMD_GET_BLOCK_ARRAYS, list_arrays},
};

int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length)
{
	errno = EINVAL;
	if (!cmd || !result || !length)
		return -1;
	for (const auto &row : QUERIES) {
		if (row.code != cmd->nCommand)
			continue;
		*result = nullptr;
		*length = 0;
		return row.list(result, length);
	}
	return -1;
}

int SetItemInfo(const IPMICOMMAND *cmd, void **result)
{
	errno = EINVAL;
	if (!cmd || !result)
		return -1;
	for (const auto &row : QUERIES) {
		if (row.code + 1 != cmd->nCommand)
			continue;
		release_list(result);
		return 0;
	}
	return -1;
}
