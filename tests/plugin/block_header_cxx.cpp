// SPDX-License-Identifier: Apache-2.0
// The header of today's records, compiled alone as C++.
#include "diskscout_block.h"

int block_header_cxx();
int block_header_cxx()
{
	const block_device device = {};
	return device.next != nullptr || device.links != nullptr;
}
