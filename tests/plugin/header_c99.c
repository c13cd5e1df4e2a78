/* SPDX-License-Identifier: Apache-2.0 */
/* The exported headers, compiled alone as C99 in the strictest way; an agent in C fills a request so. */
#include "diskscout.h"

#include "define_command.h"

int header_c99(void)
{
	IPMICOMMAND cmd = {0};
	STORAGE_DISK_LIST disk = {0};
	cmd.nCommand = CMD_GET_DISKS;
	return disk.next != 0 || sizeof(STORAGE_CDROM_LIST) != 664 || cmd.nCommand != 122100;
}
