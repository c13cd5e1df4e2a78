// SPDX-License-Identifier: Apache-2.0
// The commands about software RAID.
#include "hdd/sal/src/linux/cli.h"
#include "hdd/sal/src/linux/mdsb.h"
#include "hdd/sal/src/linux/mdspeed.h"
#include "hdd/sal/src/linux/mdstat.h"

int cmd_mdsb(char *const *words)
{
	mdp_superblock_s sb;
	if (read_mdsb(words[1], &sb) != 0)
		return -1;
	display_mdsb(&sb);
	return 0;
}

// The only command that destroys: what it overwrites is gone, for it is meant to be.
int cmd_mdsb_clear(char *const *words)
{
	return strcmp(words[1], "clear") == 0 ? clear_mdsb(words[2]) : -1;
}

int cmd_mdspeed(char *const *)
{
	mdspeed_t speed;
	if (get_mdspeed(&speed) != 0)
		return -1;
	fprintf(stderr, "mdspeed: (%d, %d)\n", low_32(speed.min), low_32(speed.max));
	return 0;
}

int cmd_mdspeed_preset(char *const *words)
{
	const mdspeed_t fastest = {100000, 100};
	if (strcmp(words[1], "default") == 0)
		return set_mdspeed_default();
	return strcmp(words[1], "max") == 0 ? set_mdspeed(&fastest) : -1;
}

int cmd_mdspeed_limits(char *const *words)
{
	int min;
	int max;
	if (word_to_int(words[1], &min) != 0 || word_to_int(words[2], &max) != 0)
		return -1;
	// compat: negative limits are refused, and nothing is written. The kernel would take one, and as an
	// unsigned number it passes for a high one.
	if (min < 0 || max < 0)
		return -1;
	const mdspeed_t speed = {static_cast<size32_t>(max), static_cast<size32_t>(min)};
	return set_mdspeed(&speed);
}

int cmd_mdstat(char *const *)
{
	return show_list(parse_mdstat_devlist, nullptr, nullptr, display_mdstat_devlist);
}
