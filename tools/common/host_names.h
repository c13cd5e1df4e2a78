// SPDX-License-Identifier: Apache-2.0
// Whose storage is shown: the host's name and its kernel's.
#ifndef DISKSCOUT_TOOLS_COMMON_HOST_NAMES_H
#define DISKSCOUT_TOOLS_COMMON_HOST_NAMES_H

#include <optional>
#include <string>

// What is not known has no value. The bytes are as the host gives them.
struct host_names_t {
	std::optional<std::string> name;   // of the host: uname's nodename
	std::optional<std::string> kernel; // its release
};

// The running host's; or, `captured`, those of the captured host that this program was started for: only what
// was captured, and never the running kernel's in its place.
host_names_t host_names(bool captured);

#endif
