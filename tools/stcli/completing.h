// SPDX-License-Identifier: Apache-2.0
// What can stand in the place of a word of the launcher's command line.
#ifndef DISKSCOUT_TOOLS_STCLI_COMPLETING_H
#define DISKSCOUT_TOOLS_STCLI_COMPLETING_H

#include <string>

// Whether the command line is `stcli --complete [WORD]...`.
//
// As the first word alone, and in full: there an option that was none of ours has always been refused, with
// whatever stood behind it. It is no word, for any may be the plug-in's, now or later. CLI11 does not hear of
// it: it would be one of the options that are refused behind a command, where this one has been an operand
// like any other.
bool asks_to_complete(int argc, char **argv);

// The answer to it. Commands are those of the plug-in that comes with the program: a library that a line only
// names is not loaded before the line is entered.
std::string completions(int argc, char **argv);

#endif
