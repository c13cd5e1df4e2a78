// SPDX-License-Identifier: Apache-2.0
// Libraries of which only the beginning is there, as after a copy for which the disk had no room.
#ifndef DISKSCOUT_TOOLS_COMMON_CUT_LIBRARY_H
#define DISKSCOUT_TOOLS_COMMON_CUT_LIBRARY_H

#include <filesystem>

// Whether the file lacks a part of what is to be loaded: the loader maps it all the same, and whoever touches
// what is missing is ended by a signal. What is no library, or cannot be read, is left to the loader.
bool is_cut_library(const std::filesystem::path &file);

#endif
