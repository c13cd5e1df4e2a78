// SPDX-License-Identifier: Apache-2.0
/*
 * The binary layout of every record that crosses the boundary: its size and where each field lies. An agent
 * built against an older header reads these very offsets.
 *
 * Rows of a table. What includes it says first what SIZE(record, size) and AT(record, field, offset) are.
 */
SIZE(UINT, 4);
SIZE(ULONGLONG, 8);
SIZE(BOOLEAN, 1);
SIZE(STORAGE_STRING, 64);

SIZE(IPMICOMMAND, 80);
AT(IPMICOMMAND, nMode, 0);
AT(IPMICOMMAND, lIp, 8);
AT(IPMICOMMAND, sUserName, 16);
AT(IPMICOMMAND, sPassword, 32);
AT(IPMICOMMAND, nCommand, 48);
AT(IPMICOMMAND, nIndex, 52);
AT(IPMICOMMAND, nPara1, 56);
AT(IPMICOMMAND, nPara2, 60);
AT(IPMICOMMAND, nPara3, 64);
AT(IPMICOMMAND, nDataLen, 68);
AT(IPMICOMMAND, szData, 72);

SIZE(STORAGE_DISK_LIST, 584);
AT(STORAGE_DISK_LIST, nDiskID, 0);
AT(STORAGE_DISK_LIST, szDeviceName, 4);
AT(STORAGE_DISK_LIST, szDescription, 68);
AT(STORAGE_DISK_LIST, szInterface, 132);
AT(STORAGE_DISK_LIST, nPosition, 196);
AT(STORAGE_DISK_LIST, szMedia, 200);
AT(STORAGE_DISK_LIST, szVendor, 264);
AT(STORAGE_DISK_LIST, szModel, 328);
AT(STORAGE_DISK_LIST, szSerialNumber, 392);
AT(STORAGE_DISK_LIST, szFirmwareVersion, 456);
AT(STORAGE_DISK_LIST, nSize, 520);
AT(STORAGE_DISK_LIST, nTotalCylinders, 528);
AT(STORAGE_DISK_LIST, nTracksPerCylinder, 532);
AT(STORAGE_DISK_LIST, nSectorsPerTrack, 536);
AT(STORAGE_DISK_LIST, nTotalHeads, 540);
AT(STORAGE_DISK_LIST, nTotalTracks, 544);
AT(STORAGE_DISK_LIST, nTotalBlocks, 548);
AT(STORAGE_DISK_LIST, nTotalSectors, 552);
AT(STORAGE_DISK_LIST, nBytesPerBlock, 556);
AT(STORAGE_DISK_LIST, nBytesPerSector, 560);
AT(STORAGE_DISK_LIST, nPartNumber, 564);
AT(STORAGE_DISK_LIST, bUsedBySystem, 568);
AT(STORAGE_DISK_LIST, nExPartNumber, 572);
AT(STORAGE_DISK_LIST, next, 576);

SIZE(STORAGE_CDROM_LIST, 664);
AT(STORAGE_CDROM_LIST, nCdromID, 0);
AT(STORAGE_CDROM_LIST, szDeviceName, 4);
AT(STORAGE_CDROM_LIST, szDiscription, 68);
AT(STORAGE_CDROM_LIST, szInterface, 132);
AT(STORAGE_CDROM_LIST, nPosition, 196);
AT(STORAGE_CDROM_LIST, szMedia, 200);
AT(STORAGE_CDROM_LIST, szVendor, 264);
AT(STORAGE_CDROM_LIST, szModel, 328);
AT(STORAGE_CDROM_LIST, szSerialNumber, 392);
AT(STORAGE_CDROM_LIST, szFirmwareVersion, 456);
AT(STORAGE_CDROM_LIST, szMountPoint, 520);
AT(STORAGE_CDROM_LIST, szLabel, 584);
AT(STORAGE_CDROM_LIST, nTotalSpace, 648);
AT(STORAGE_CDROM_LIST, next, 656);

SIZE(STORAGE_PART_LIST, 384);
AT(STORAGE_PART_LIST, szDiskDeviceName, 0);
AT(STORAGE_PART_LIST, nPartIndex, 64);
AT(STORAGE_PART_LIST, nStart, 72);
AT(STORAGE_PART_LIST, nSize, 80);
AT(STORAGE_PART_LIST, nTotalSectors, 88);
AT(STORAGE_PART_LIST, szType, 92);
AT(STORAGE_PART_LIST, szFileSystem, 156);
AT(STORAGE_PART_LIST, szMountPoint, 220);
AT(STORAGE_PART_LIST, szLabel, 284);
AT(STORAGE_PART_LIST, nTotalSpace, 352);
AT(STORAGE_PART_LIST, nUsedSpace, 360);
AT(STORAGE_PART_LIST, bUsedBySystem, 368);
AT(STORAGE_PART_LIST, bActive, 369);
AT(STORAGE_PART_LIST, next, 376);

SIZE(aac_controller, 88);
AT(aac_controller, ControllerID, 0);
AT(aac_controller, Adapter_Name, 4);
AT(aac_controller, Adapter_Type, 36);
AT(aac_controller, Availability, 68);
AT(aac_controller, Clustering, 72);
AT(aac_controller, next, 80);

SIZE(HWRAID_LIST, 368);
AT(HWRAID_LIST, nRaidID, 0);
AT(HWRAID_LIST, nDiskNumber, 4);
AT(HWRAID_LIST, nPosition, 8);
AT(HWRAID_LIST, RaidType, 264);
AT(HWRAID_LIST, nTotalSize, 272);
AT(HWRAID_LIST, nStripeSize, 280);
AT(HWRAID_LIST, Usage, 288);
AT(HWRAID_LIST, nHotSpare, 292);
AT(HWRAID_LIST, szLabel, 296);
AT(HWRAID_LIST, next, 360);

SIZE(HWRAID_DISK_LIST, 168);
AT(HWRAID_DISK_LIST, nPosition, 0);
AT(HWRAID_DISK_LIST, szVendor, 4);
AT(HWRAID_DISK_LIST, szModel, 68);
AT(HWRAID_DISK_LIST, DeviceType, 132);
AT(HWRAID_DISK_LIST, nBlocks, 136);
AT(HWRAID_DISK_LIST, nBytesPerBlock, 144);
AT(HWRAID_DISK_LIST, Usage, 148);
AT(HWRAID_DISK_LIST, Shared, 152);
AT(HWRAID_DISK_LIST, nRate, 156);
AT(HWRAID_DISK_LIST, next, 160);

SIZE(HWRAID_SPACE_LIST, 24);
AT(HWRAID_SPACE_LIST, nOffset, 0);
AT(HWRAID_SPACE_LIST, nFreeSpace, 8);
AT(HWRAID_SPACE_LIST, next, 16);

SIZE(HWRAID_PARTITION_LIST, 56);
AT(HWRAID_PARTITION_LIST, nPosition, 0);
AT(HWRAID_PARTITION_LIST, nOffset, 8);
AT(HWRAID_PARTITION_LIST, nSize, 16);
AT(HWRAID_PARTITION_LIST, bRaidID, 24);
AT(HWRAID_PARTITION_LIST, RaidType, 28);
AT(HWRAID_PARTITION_LIST, nMultilevelRaidID, 32);
AT(HWRAID_PARTITION_LIST, MultilevelType, 36);
AT(HWRAID_PARTITION_LIST, ReadWriteAttribute, 40);
AT(HWRAID_PARTITION_LIST, next, 48);

SIZE(aac_container, 328);
AT(aac_container, nCntnerID, 0);
AT(aac_container, nDiskNumber, 4);
AT(aac_container, C_ID_L, 8);
AT(aac_container, Container_Type, 264);
AT(aac_container, TotalSize, 268);
AT(aac_container, StripeSize, 272);
AT(aac_container, Usage, 276);
AT(aac_container, HotSpare, 280);
AT(aac_container, Label, 284);
AT(aac_container, next, 320);

SIZE(aac_disk, 104);
AT(aac_disk, C_ID_L, 0);
AT(aac_disk, VendorID, 4);
AT(aac_disk, ProductID, 36);
AT(aac_disk, Device_Type, 68);
AT(aac_disk, Blocks, 72);
AT(aac_disk, BytesPerBlock, 80);
AT(aac_disk, Usage, 84);
AT(aac_disk, Shared, 88);
AT(aac_disk, Rate, 92);
AT(aac_disk, next, 96);

SIZE(aac_space, 16);
AT(aac_space, nOffset, 0);
AT(aac_space, nFreeSpace, 4);
AT(aac_space, next, 8);

SIZE(aac_partition, 56);
AT(aac_partition, C_ID_L, 0);
AT(aac_partition, nOffset, 8);
AT(aac_partition, nSize, 16);
AT(aac_partition, bContainerID, 24);
AT(aac_partition, ContainerType, 28);
AT(aac_partition, nMultilevelContainerID, 32);
AT(aac_partition, nMultilevelContainerType, 36);
AT(aac_partition, nReadWriteAttribute, 40);
AT(aac_partition, next, 48);

SIZE(aac_task, 32);
AT(aac_task, TaskId, 0);
AT(aac_task, Function, 4);
AT(aac_task, Done, 8);
AT(aac_task, ContainerID, 12);
AT(aac_task, State, 16);
AT(aac_task, next, 24);
