// SPDX-License-Identifier: Apache-2.0
// The root of the diagnostic command line, and its leaf: the exported queries, run as an agent runs them.
#ifndef DISKSCOUT_HDD_CLI_H
#define DISKSCOUT_HDD_CLI_H

#include "hdd/sal/src/0/cli.h"

int clifunc_hdd(int argc, char **argv, int start, int *matched);
int cli_hdd(int argc, char **argv, int start, int *matched);

#endif
