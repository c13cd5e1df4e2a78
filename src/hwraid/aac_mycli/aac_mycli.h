// SPDX-License-Identifier: Apache-2.0
// The console of service staff: every operation of the hardware side by hand, on the controller aac0.
//
// It asks on standard error and reads standard input. Nothing outlives a run.
#ifndef DISKSCOUT_HWRAID_AAC_MYCLI_H
#define DISKSCOUT_HWRAID_AAC_MYCLI_H

#include "hwraid/aac_mycli/aac_input.h"

// The main menu, until the user quits or the input ends. Always 0.
int call_mycli();
// Prints the main menu's line.
void printf_info();
// Prints a boxed menu of the controller operations; no menu shows it.
void print_controller();

// The sub-menus, each until the user leaves it or the input ends. Always 0.
int do_with_cmd_controller();
int do_with_cmd_disk();
int do_with_cmd_container();
int do_with_cmd_raid();
int do_with_cmd_task();
int do_with_hsa_intreface();

#endif
