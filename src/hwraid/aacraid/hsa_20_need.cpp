#include "hwraid/aacraid/hsa_20_need.h"

#include "hwraid/aacraid/aac_controller.h"

static void ReleaseControllers(void **ppList)
{
	Aac_Clear_Controller_List(static_cast<aac_controller *>(*ppList));
	*ppList = nullptr;
}

// The records of the operation are handed out as they are.
static int QueryControllers(void **ppList, int *pnLength)
{
	ReleaseControllers(ppList);
	aac_controller *pHead = nullptr;
	const int nResult = Aac_Get_Controller_List(&pHead);
	if (nResult < 0) {
		Aac_Clear_Controller_List(pHead);
		return -1;
	}
	*ppList = pHead;
	*pnLength = nResult;
	return 0;
}

int HWRAID__GetItemInfo(const IPMICOMMAND *pCmd, void **ppList, int *pnLength)
{
	*pnLength = 0;
	switch (pCmd->nCommand) {
	case CMD_GET_CONTROLLERS:
		return QueryControllers(ppList, pnLength);
	case CMD_FREE_CONTROLLERS:
		ReleaseControllers(ppList);
		return 0;
	default:
		return 0;
	}
}
