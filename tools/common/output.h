// SPDX-License-Identifier: Apache-2.0
// The two streams of a program.
#ifndef DISKSCOUT_TOOLS_COMMON_OUTPUT_H
#define DISKSCOUT_TOOLS_COMMON_OUTPUT_H

#include <string_view>

// Puts something on each of the descriptors 0 to 2 that the caller has left closed. Else the plug-in's first
// open would get the number of standard output or error, and our text might be written to a disk.
void occupy_standard_descriptors();

// Writes the text, which is all that is ever written there, to standard output. False: with a complaint.
bool write_output(std::string_view text);

// One line on standard error, with the program's name before it.
void complain(std::string_view what);

#endif
