// SPDX-License-Identifier: Apache-2.0
// A machine, drawn.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PICTURE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PICTURE_H

#include "cell.h"
#include "machine_tree.h"

#include <string>

// A table as wide as the terminal allows, without columns that would be empty.
std::string picture_of(const machine_tree_t &machine, sizes_t sizes);

#endif
