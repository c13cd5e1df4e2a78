// SPDX-License-Identifier: Apache-2.0
// What all our programs are to their callers: a name and an exit status.
#ifndef DISKSCOUT_TOOLS_COMMON_PROGRAM_H
#define DISKSCOUT_TOOLS_COMMON_PROGRAM_H

// STATUS_WARNED: nothing failed, but there is something to be told (diskscout doctor).
enum { STATUS_FINE = 0, STATUS_FAILED = 1, STATUS_USAGE = 2, STATUS_WARNED = 3 };

// Every program defines its own; what it complains about begins with it.
extern const char PROGRAM_NAME[];

// The exit status of a program that does this. What it throws is complained about: a usage_error is
// STATUS_USAGE, all else STATUS_FAILED.
int run_program(int (*run)(int argc, char **argv), int argc, char **argv);

#endif
