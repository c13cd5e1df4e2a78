// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/create_a_uuid.h"

#include "hwraid/aacraid/output_debug_string.h"

#include <uuid/uuid.h>

int CreateOneUuid(char *lpszUUID)
{
	if (!lpszUUID) {
		OutputDebugString("File:%s, Line:%4d, Hello, NULL.\n", "hwraid/aacraid/create_a_uuid",
		                  __LINE__);
		return -1;
	}
	uuid_t id;
	lpszUUID[0] = '\0';
	uuid_generate(id);
	uuid_unparse(id, lpszUUID);
	if (lpszUUID[0] != '\0')
		return 0;
	OutputDebugString("File:%s, Line:%4d, uuid create error.\n", "hwraid/aacraid/create_a_uuid",
	                  __LINE__);
	return -1;
}
