// SPDX-License-Identifier: Apache-2.0
// What a device's path in sysfs tells of where it is attached:
//
//   devices/pci0000:00/0000:00:1f.2/ata3/host2/target2:0:0/2:0:0:0/block/sda
//   devices/pci0000:00/0000:00:14.0/usb2/2-1/2-1:1.0/host6/target6:0:0/6:0:0:0/block/sdc/sdc1
//   devices/pci0000:00/0000:00:04.0/nvme/nvme0/nvme0n1
#ifndef DISKSCOUT_BLOCK_DEVPATH_H
#define DISKSCOUT_BLOCK_DEVPATH_H

#include "text.h"

struct scsi_address_t {
	int host, channel, target;
	int64_t lun;
};

// Whether it is a SCSI unit, and the address of the nearest one; false also for one that does not fit.
bool is_scsi_unit(text_t path);
bool scsi_address_of(text_t path, scsi_address_t *address);

// What it is attached by, as diskscout_block.h names it, or null: "sata" stands for all of ATA here.
const char *transport_of(text_t path);

// The folder of the nearest PCI function, of the USB device, of the ATA port above the device: the path up to
// there, or empty.
text_t pci_folder_of(text_t path);
text_t usb_folder_of(text_t path);
text_t ata_folder_of(text_t path);

// The last component.
text_t last_name(text_t path);

#endif
