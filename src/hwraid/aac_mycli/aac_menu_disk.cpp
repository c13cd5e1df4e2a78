// SPDX-License-Identifier: Apache-2.0
// The sub-menu of the disks behind the controller.
#include "hwraid/aac_mycli/aac_mycli.h"

#include "hwraid/aac_mycli/aac_menu.h"
#include "hwraid/aac_mycli/aac_print.h"
#include "hwraid/aacraid/aac_disk.h"

#include <iterator>

static void PrintPackedAddress(int nC_ID_L)
{
	fprintf(stderr, "C_ID_L = %08x\n", static_cast<unsigned>(nC_ID_L));
	PrintAddress("C_ID_L", nC_ID_L);
}

static void PrintDisk(const aac_disk &disk)
{
	PrintPackedAddress(disk.C_ID_L);
	fprintf(stderr, "VendorID: %s\n", disk.VendorID);
	fprintf(stderr, "ProductID: %s\n", disk.ProductID);
	fprintf(stderr, "Device_Type: %d (%s)\n", disk.Device_Type, Disk_GetDeviceType(&disk));
	fprintf(stderr, "Blocks: %lld\n", disk.Blocks);
	fprintf(stderr, "BytesPerBlock: %d\n", disk.BytesPerBlock);
	fprintf(stderr, "Usage: %d (%s)\n", disk.Usage, Disk_GetUsage(&disk));
	fprintf(stderr, "Shared: %d (%s)\n", disk.Shared, Disk_GetShared(&disk));
	fprintf(stderr, "Rate: %d\n", disk.Rate);
}

static void PrintSpace(const aac_space &space)
{
	fprintf(stderr, " \t\t space :%d \n", space.nFreeSpace);
}

static void PrintPartition(const aac_partition &partition)
{
	PrintPackedAddress(partition.C_ID_L);
	fprintf(stderr, "Offset: %lldK\n", partition.nOffset);
	fprintf(stderr, "Size: %lldK\n", partition.nSize);
	fprintf(stderr, "ContainerID: %d\n", partition.bContainerID);
	fprintf(stderr, "ContainerType: %d %s\n", partition.ContainerType, CONTAINER_TYPE_CODES);
	fprintf(stderr, "MultilevelContainerID: %d\n", partition.nMultilevelContainerID);
	fprintf(stderr, "MultilevelContainerType: %d (0- None 1- Stripe)\n",
	        partition.nMultilevelContainerType);
	fprintf(stderr, "ReadWriteAttribute: %d (0- none 1- read only 2- write only 3- read/write)\n",
	        partition.nReadWriteAttribute);
}

static void ListDisks()
{
	static constexpr ListKind<aac_disk> KIND = {ReportFailure, PrintDisk, RULE, Aac_Clear_Disk_List};
	ShowList(KIND, [](aac_disk **pHead) { return Aac_Get_Disk_List(CONTROLLER, pHead); });
}

static void ShowDefect()
{
	int nC_ID_L;
	if (!AskDisk("Disk", &nC_ID_L))
		return;
	int nPrimary = -1;
	int nGrown = -1;
	const int nResult = Aac_Disk_Show_Defect(CONTROLLER, nC_ID_L, &nPrimary, &nGrown);
	fprintf(stderr, "disk show defect return :%d, primary = %d grown = %d\n", nResult, nPrimary, nGrown);
}

static void ShowSpace()
{
	static constexpr ListKind<aac_space> KIND = {
		[](int nResult) { fprintf(stderr, "disk show space return :%d\n", nResult); }, PrintSpace,
		NO_RULE, Aac_Clear_Disk_Space_List};
	int nC_ID_L;
	if (!AskDisk("Disk", &nC_ID_L))
		return;
	ShowList(KIND,
	         [nC_ID_L](aac_space **pHead) { return Aac_Disk_Show_Space(CONTROLLER, nC_ID_L, pHead); });
}

static void ShowPartition()
{
	static constexpr ListKind<aac_partition> KIND = {
		[](int nResult) { fprintf(stderr, "show disk partition return :%d\n", nResult); },
		PrintPartition, RULE, Aac_Clear_Disk_Partition_List};
	ShowList(KIND, [](aac_partition **pHead) { return Aac_Disk_Show_Partition(CONTROLLER, pHead); });
}

int do_with_cmd_disk()
{
	static constexpr MenuRow ROWS[] = {
		{'1', ListDisks}, {'2', ShowDefect}, {'3', ShowSpace}, {'4', ShowPartition}};
	static constexpr Menu MENU = {
		"\nPlease select:1-get disk list, 2 -disk show defect \n"
		"\t3 -disk show space 4 -disk show partition 0- quit\n",
		"Command>Disk>",
		"Unknown disk command!\n",
		ROWS,
		std::size(ROWS),
	};
	return RunMenu(MENU);
}
