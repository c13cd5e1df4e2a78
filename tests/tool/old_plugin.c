/* A plug-in that cannot be told where the controller tool's configuration is: every query fails. */
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
