// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/linux/xxid.h"

#include "hdd/sal/src/0/str.h"

#include <uuid/uuid.h>

void xxid_generate(unsigned char *id)
{
	uuid_generate(id);
}

int xxid_unparse(const unsigned char *id, char *text)
{
	b0_str(text);
	uuid_unparse_lower(id, text);
	return 0;
}
