/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A plug-in that cannot be told where the controller tool's configuration is: every query fails, and so does
 * every command.
 */
#include "diskscout.h"

int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length)
{
	(void)cmd, (void)result, (void)length;
	return -1;
}

int SetItemInfo(const IPMICOMMAND *cmd, void **result)
{
	(void)cmd, (void)result;
	return 0;
}

int stcli(int argc, char **argv, int ZERO)
{
	(void)argc, (void)argv, (void)ZERO;
	return -1;
}
