// SPDX-License-Identifier: Apache-2.0
// What a command works on.
#include "context.h"

disk_t &require_disk(controller_t &where, const address_t &at)
{
	if (at.channel >= where.channels)
		throw command_error("The specified channel was not found on the controller.");
	for (disk_t &d : where.disks) {
		if (d.at == at)
			return d;
	}
	throw command_error("The specified device was not found.");
}

disk_t &require_storage(controller_t &where, const address_t &at)
{
	disk_t &d = require_disk(where, at);
	if (d.type != "Disk")
		throw command_error("The specified device is not a disk.");
	return d;
}

container_t &require_container(controller_t &where, int number)
{
	if (container_t *const c = find_container(where, number))
		return *c;
	throw command_error("The specified container was not found.");
}
