// The boundary: each command code goes to its provider, null arguments and unknown codes go nowhere.
#include "diskscout.h"

#include "hdd/hdd.h"
#include "hwraid/aacraid/hsa_20_need.h"

#include <stdio.h>

int memory_counter_hdd;
// Nothing changes this one: the hardware RAID side deliberately does not count its records.
int memory_counter_hwraid;

int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length)
{
	if (!cmd || !result || !length)
		return -1;
	switch (cmd->nCommand) {
	case CMD_GET_DISKS:
	case CMD_GET_PARTITIONS:
	case CMD_GET_CDROMS:
		return GetItemInfo_hdd(cmd, result, length);
	case CMD_GET_CONTAINERS:
	case CMD_GET_RAID_DISKS:
	case CMD_GET_RAID_SPACE:
	case CMD_GET_RAID_PARTITIONS:
	case CMD_GET_CONTROLLERS:
		return HWRAID__GetItemInfo(cmd, result, length);
	default:
		return -1;
	}
}

int SetItemInfo(const IPMICOMMAND *cmd, void **result)
{
	if (!cmd || !result)
		return -1;
	switch (cmd->nCommand) {
	case CMD_FREE_DISKS:
	case CMD_FREE_PARTITIONS:
	case CMD_FREE_CDROMS:
		return SetItemInfo_hdd(cmd, result);
	case CMD_FREE_CONTAINERS:
	case CMD_FREE_RAID_DISKS:
	case CMD_FREE_RAID_SPACE:
	case CMD_FREE_RAID_PARTITIONS:
	case CMD_FREE_CONTROLLERS: {
		// Deliberately the function that queries: it knows the release codes itself.
		int nLength = 0;
		return HWRAID__GetItemInfo(cmd, result, &nLength);
	}
	default:
		return -1;
	}
}

int stcli(int, char **, int)
{
	fputs("stcli: Hello world!\n", stderr);
	fputs("stcli error: invalid cli command.\n", stderr);
	return -1;
}
