// SPDX-License-Identifier: Apache-2.0
// The boundary: each command code goes to its provider, null arguments and unknown codes go nowhere; the
// diagnostic command line goes to its tree or to the console.
#include "diskscout.h"

#include "hdd/cli.h"
#include "hdd/hdd.h"
#include "hwraid/aac_mycli/aac_mycli.h"
#include "hwraid/aacraid/hsa_20_need.h"

#include <stdio.h>
#include <string.h>

int memory_counter_hdd;
// compat: the hardware RAID side does not count its records: this stays 0, and no leak there shows.
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
		// compat: the query's function releases, too; the count that it sets to 0 is nobody's.
		int nLength = 0;
		return HWRAID__GetItemInfo(cmd, result, &nLength);
	}
	default:
		return -1;
	}
}

// Whether the command line can be walked: its handlers look at every word.
static bool has_words(int argc, char **argv, int start)
{
	if (!argv || start < 0 || start >= argc)
		return false;
	for (int i = start; i < argc; i++)
		if (!argv[i])
			return false;
	return true;
}

int stcli(int argc, char **argv, int ZERO)
{
	fputs("stcli: Hello world!\n", stderr);
	if (argc > 1 && argv && argv[1] && strcmp(argv[1], "hwraid") == 0) {
		call_mycli();
		fputs("stcli: Ok!\n", stderr);
		return 0;
	}

	int result = 0;
	const int ret = has_words(argc, argv, ZERO) ? cli_hdd(argc, argv, ZERO, &result) : 0;
	if (result == 0) {
		fputs("stcli error: invalid cli command.\n", stderr);
		return -1;
	}
	fputs(ret == 0 ? "stcli: Ok!\n" : "stcli error: operation failed.\n", stderr);
	return ret == 0 ? 0 : -1;
}
