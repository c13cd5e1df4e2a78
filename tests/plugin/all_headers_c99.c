/* SPDX-License-Identifier: Apache-2.0 */
/* All exported headers in one source of C99: an agent that loads both libraries. */
#include "diskscout_block.h"

#include "diskscout.h"
#include "diskscout_raid.h"

int all_headers_c99(void)
{
	const block_device device = {0};
	const STORAGE_DISK_LIST disk = {0};
	const aac_disk behind = {0};
	return device.next != NULL || disk.next != NULL || behind.next != NULL;
}
