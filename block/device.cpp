// SPDX-License-Identifier: Apache-2.0
#include "device.h"

void clear_device(block_device *record)
{
	*record = block_device{};
	record->record_size = sizeof *record;
	for (int *number :
	     {&record->major, &record->minor, &record->partition_number, &record->logical_sector,
	      &record->physical_sector, &record->rotational, &record->removable, &record->hidden,
	      &record->read_only, &record->scsi_host, &record->scsi_channel, &record->scsi_target,
	      &record->numa_node, &record->under_root, &record->under_boot, &record->under_swap})
		*number = BLOCK_ABSENT;
	record->size = BLOCK_ABSENT;
	record->scsi_lun = BLOCK_ABSENT;
}

bool is_kind(const device_t &device, text_t kind)
{
	return device.record.kind && kind == device.record.kind; // none without memory
}
