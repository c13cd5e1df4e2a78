// SPDX-License-Identifier: Apache-2.0
// An array of /proc/mdstat as one line of text, for comparing: number, state, level, members built for, in
// service and failed, letters of their states, resynchronisation, tenths of a per cent, sectors, then the
// member list: num, num_real and its members as role:name. All separated by '|'.
//
//   0|active|1|2|2|0|UU|none|0|24448|2|2|0:sdb1 1:sdc1
#ifndef DISKSCOUT_TESTS_HDD_MDSTAT_DESCRIBED_H
#define DISKSCOUT_TESTS_HDD_MDSTAT_DESCRIBED_H

#include "host.h"

#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/mdstat.h"

// The members alone, from num on.
inline std::string members_of(const mdstat_subdevlist_t &list)
{
	std::string text = number(list.num) + "|" + number(list.num_real) + "|";
	const char *separator = "";
	for (const mdstat_subdev_t &member : live_items(list)) {
		text += separator + number(member.index) + ":" + text_of(member.name) +
		        (member.faulty == 0   ? ""
		         : member.faulty == 1 ? "(F)"
		                              : "(?)");
		separator = " ";
	}
	return text;
}

inline std::string described(const mdstat_dev_t &dev)
{
	static const char *const types[] = {"none", "resync", "recovery"};
	const bool known = dev.resync_type >= 0 && dev.resync_type <= 2;
	const std::string state = dev.active == 0 ? "inactive" : dev.active == 1 ? "active" : "?";
	const std::string level = dev.mdlevel ? std::string(1, dev.mdlevel) : "";
	return number(dev.mdminor) + "|" + state + "|" + level + "|" + number(dev.nr_original) + "|" +
	       number(dev.nr_normal) + "|" + number(dev.nr_faulty) + "|" + text_of(dev.status) + "|" +
	       (known ? types[dev.resync_type] : "?") + "|" + number(dev.resync_progress) + "|" +
	       number(static_cast<long>(dev.size)) + "|" + members_of(dev.subdevlist);
}

// What every array has in common that was read: the members belong to their list.
inline void expect_wired(const mdstat_dev_t &dev)
{
	EXPECT_EQ(dev.tag, 1);
	EXPECT_TRUE(is_zero(dev.uuid));
	const mdstat_subdevlist_t &members = dev.subdevlist;
	EXPECT_EQ(members.parent, nullptr);
	EXPECT_EQ(members.lmt, 8);
	EXPECT_EQ(members.nr_faulty, dev.nr_faulty);
	int slot = 0;
	for (const mdstat_subdev_t &member : members.item) {
		if (member.tag == 0) {
			EXPECT_TRUE(is_zero(member)) << "role " << slot;
		} else {
			EXPECT_EQ(member.tag, 1) << "role " << slot;
			EXPECT_EQ(member.index, slot);
			EXPECT_EQ(member.parent, &members) << "role " << slot;
		}
		slot++;
	}
}

#endif
