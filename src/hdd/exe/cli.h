// SPDX-License-Identifier: Apache-2.0
// The diagnostic commands over the inventory: its internal lists, unfiltered.
#ifndef DISKSCOUT_HDD_EXE_CLI_H
#define DISKSCOUT_HDD_EXE_CLI_H

#include "hdd/sal/src/0/cli.h"

int clifunc_exe(int argc, char **argv, int start, int *matched);
// The node over the readers' commands and those of the inventory.
int cli_exe(int argc, char **argv, int start, int *matched);

#endif
