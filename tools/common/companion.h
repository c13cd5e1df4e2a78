// SPDX-License-Identifier: Apache-2.0
// Libraries that come with the program.
#ifndef DISKSCOUT_TOOLS_COMMON_COMPANION_H
#define DISKSCOUT_TOOLS_COMMON_COMPANION_H

#include <filesystem>
#include <string_view>

// Where the library of this file name lies: beside the program, as in a build directory, or else
// where the installation has put the plug-ins, seen from there. Throws plugin_error when it is in neither
// place.
std::filesystem::path find_companion(std::string_view file_name);

// The same file, independent of the working directory. Throws usage_error when that is gone.
std::filesystem::path absolute_path(const std::filesystem::path &path);

#endif
