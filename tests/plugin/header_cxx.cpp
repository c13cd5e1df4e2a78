// SPDX-License-Identifier: Apache-2.0
// The exported headers, compiled alone as C++.
#include "define_command.h"
#include "diskscout.h"

int header_cxx();
int header_cxx()
{
	const STORAGE_PART_LIST part = {};
	return part.next != nullptr;
}
