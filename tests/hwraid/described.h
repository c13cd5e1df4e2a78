// SPDX-License-Identifier: Apache-2.0
// A container list as text, for comparing: a line a record with number, members counted, members stored,
// type, megabytes, stripe size, usage, hot spare and label, separated by '|'. Members and hot spare are
// channel:ID:LUN, in decimal; a member of a multi-level container is a container's number.
#ifndef DISKSCOUT_TESTS_HWRAID_DESCRIBED_H
#define DISKSCOUT_TESTS_HWRAID_DESCRIBED_H

#include "hwraid/aacraid/aac_hardraid.h"

#include <string>

inline std::string address(int packed)
{
	// No address that the tool prints is a number from 24 to 63: a LUN has one hexadecimal digit.
	if (packed < 0 || (packed >= 24 && packed <= 63))
		return std::to_string(packed);
	return std::to_string(packed >> 16) + ":" + std::to_string(packed >> 8 & 255) + ":" +
	       std::to_string(packed & 255);
}

inline std::string members(const aac_container &record)
{
	size_t used = 64;
	while (used > 0 && record.C_ID_L[used - 1] == AAC_NO_MEMBER)
		used--;
	std::string text;
	for (size_t i = 0; i < used; i++)
		text += (i ? "," : "") + address(record.C_ID_L[i]);
	return text;
}

inline std::string described(const aac_container *head)
{
	std::string text;
	for (; head; head = head->next) {
		text += std::to_string(head->nCntnerID) + "|" + std::to_string(head->nDiskNumber) + "|" +
		        members(*head) + "|" + std::to_string(head->Container_Type) + "|" +
		        std::to_string(head->TotalSize) + "|" + std::to_string(head->StripeSize) + "|" +
		        std::to_string(head->Usage) + "|" + address(head->HotSpare) + "|" + head->Label +
		        "\n";
	}
	return text;
}

#endif
