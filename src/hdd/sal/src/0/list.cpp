// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/list.h"

void dump_list_head(int num, int num_real, int lmt, const void *parent, const void *list)
{
	fputs("**********************************************************\n", stderr);
	fprintf(stderr, "num=%d, num_real=%d, lmt=%d, parent=%08x, this=%08x\n", num, num_real, lmt,
	        low_32(parent), low_32(list));
}

void dump_item_head(int index, int tag, const void *parent)
{
	fprintf(stderr, "[*%d %-2d %08x*] ", index, tag, low_32(parent));
}
