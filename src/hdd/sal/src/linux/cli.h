// SPDX-License-Identifier: Apache-2.0
// The diagnostic commands over the readers and the device primitives.
#ifndef DISKSCOUT_HDD_SAL_LINUX_CLI_H
#define DISKSCOUT_HDD_SAL_LINUX_CLI_H

#include "hdd/sal/src/0/cli.h"

// Leaves: one device at a time; the tables of the system.
int cli_1(int argc, char **argv, int start, int *matched);
int cli_linux(int argc, char **argv, int start, int *matched);
// The leaf of the operating system that this is built for.
int cli_os(int argc, char **argv, int start, int *matched);
// The node over all readers.
int cli_sal(int argc, char **argv, int start, int *matched);

// Commands of cli_linux about software RAID, in a file of their own.
int cmd_mdsb(char *const *words);
int cmd_mdsb_clear(char *const *words);
int cmd_mdspeed(char *const *words);
int cmd_mdspeed_preset(char *const *words);
int cmd_mdspeed_limits(char *const *words);
int cmd_mdstat(char *const *words);

#endif
