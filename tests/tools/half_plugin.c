/* SPDX-License-Identifier: Apache-2.0 */
/* A library that can be asked but takes nothing back and has no commands: no plug-in. */
#include "diskscout.h"

int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length)
{
	(void)cmd, (void)result, (void)length;
	return -1;
}
