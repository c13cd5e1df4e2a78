// SPDX-License-Identifier: Apache-2.0
// One whole operation of the hardware side, beside the shells that it cannot do without.
#ifndef DISKSCOUT_BENCH_OPERATION_H
#define DISKSCOUT_BENCH_OPERATION_H

// Without names for its files: every run fails before it begins.
void use_no_tool();
// `cat` as the tool and `cp` as the filter.
void use_plain_tool();

// A task list.
void operation();
// Its script written, tool and filter run, and the three files removed, all under known names.
void operation_floor();

// How many shells a piece of work starts.
int shells_of(void (*run)());

#endif
