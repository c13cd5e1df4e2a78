// What a command works on.
#include "context.h"

disk &require_disk(controller &where, const address &at)
{
	if (at.channel >= where.channels)
		throw command_error("The specified channel was not found on the controller.");
	for (disk &d : where.disks) {
		if (d.at == at)
			return d;
	}
	throw command_error("The specified device was not found.");
}

disk &require_storage(controller &where, const address &at)
{
	disk &d = require_disk(where, at);
	if (d.type != "Disk")
		throw command_error("The specified device is not a disk.");
	return d;
}

container &require_container(controller &where, int number)
{
	if (container *const c = find_container(where, number))
		return *c;
	throw command_error("The specified container was not found.");
}
