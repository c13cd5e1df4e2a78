// SPDX-License-Identifier: Apache-2.0
// The sub-menu of the containers and their hot spares.
#include "hwraid/aac_mycli/aac_mycli.h"

#include "hwraid/aac_mycli/aac_menu.h"
#include "hwraid/aac_mycli/aac_print.h"
#include "hwraid/aacraid/aac_container.h"

#include <iterator>

static constexpr char CONTAINER_PROMPT[] = "Please input Container ID(which defect are shown):";

static void PrintMembers(const aac_container &container)
{
	// compat: the members of a RAID 10 are containers, and their numbers stand as LUNs of disks 0:0; who
	// reads on has to look at the type.
	for (const int nMember : container.C_ID_L)
		if (nMember != AAC_NO_MEMBER)
			fprintf(stderr, "      Channel: %d ID:%d Lun:%d \n", GetChannelFromC_ID_L(nMember),
			        GetIDFromC_ID_L(nMember), GetLunFromC_ID_L(nMember));
}

static void PrintContainer(const aac_container &container)
{
	fprintf(stderr, "ContainerID: %d\n", container.nCntnerID);
	fprintf(stderr, "Label: %s\n", container.Label);
	fprintf(stderr, "Container_Type: %d %s\n", container.Container_Type, CONTAINER_TYPE_CODES);
	fprintf(stderr,
	        "Usage: %d (0- FAT 1- MultPart 2- NetWare 3- None 4- NTFS 5- Open 6- UnCfged 7- Unknown "
	        "8- UnMap'd 9- Valid)\n",
	        container.Usage);
	// A mirror that has lost a disk counts one member less.
	fprintf(stderr, "DiskNumber: %d\n", container.nDiskNumber);
	PrintMembers(container);
	fprintf(stderr, "    TotalSize:%4dM  stripesize:%4dK \n", container.TotalSize, container.StripeSize);
	if (container.HotSpare == AAC_NO_MEMBER)
		fputs("HotSpare    :none\n", stderr);
	else
		PrintAddress("HotSpare", container.HotSpare);
}

static void ListContainers()
{
	static constexpr ListKind<aac_container> KIND = {ReportFailure, PrintContainer, RULE,
	                                                 Aac_Clear_Container_List};
	ShowList(KIND, [](aac_container **pHead) { return Aac_Get_Container_List(CONTROLLER, pHead); });
}

static void DeleteContainer()
{
	int nAlways;
	int nContainerID;
	if (!AskNumber(0, 1, "Always init even if has data:(0/1):", &nAlways) ||
	    !AskContainer(CONTAINER_PROMPT, &nContainerID))
		return;
	fprintf(stderr, "container delete return:%d\n",
	        Aac_Container_Delete(CONTROLLER, nAlways, nContainerID));
}

static void SetFailover()
{
	int nC_ID_L;
	int nContainerID;
	if (!AskDisk("Disk", &nC_ID_L) || !AskContainer(CONTAINER_PROMPT, &nContainerID))
		return;
	fprintf(stderr, "container set failover return:%d\n",
	        Aac_Container_Set_Failover(CONTROLLER, nContainerID, nC_ID_L));
}

static void ShowFailover()
{
	int nContainerID;
	if (!AskContainer(CONTAINER_PROMPT, &nContainerID))
		return;
	const int nResult = Aac_Container_Show_Failover(CONTROLLER, nContainerID);
	if (nResult >= 0)
		PrintAddress("HotSpare", nResult);
	fprintf(stderr, "container show failover return:%d\n", nResult);
}

static void NameDiskOfContainer()
{
	int nContainerID;
	if (!AskContainer(CONTAINER_PROMPT, &nContainerID))
		return;
	char szName[256];
	const int nResult = Aac_Get_Container_Corresponding_Disk_Name(CONTROLLER, nContainerID, szName);
	if (nResult == 0)
		fprintf(stderr, "Disk name: %s\n", szName);
	fprintf(stderr, "get corresponding disk name return:%d\n", nResult);
}

int do_with_cmd_container()
{
	static constexpr MenuRow ROWS[] = {{'1', ListContainers},
	                                   {'2', DeleteContainer},
	                                   {'3', SetFailover},
	                                   {'4', ShowFailover},
	                                   {'5', NameDiskOfContainer}};
	static constexpr Menu MENU = {
		"\nPlease select:1-get container list, 2-container delete 3-set failover \n"
		"                4-show failover 5 get container corresponding disk name \n",
		"Command>Container>",
		"Unknown container command!\n",
		ROWS,
		std::size(ROWS),
	};
	return RunMenu(MENU);
}
