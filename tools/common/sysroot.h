// Captured hosts.
#ifndef DISKSCOUT_TOOLS_COMMON_SYSROOT_H
#define DISKSCOUT_TOOLS_COMMON_SYSROOT_H

#include <string>
#include <vector>

// Starts this program anew, with the replay library loaded before all others and told to show the host that
// is captured in the directory. The arguments, argv[0] included, are those of the new start; they must not
// lead here again. Throws usage_error when the directory holds no captured host, and does not return else.
[[noreturn]] void restart_on_captured_host(const std::string &directory, std::vector<std::string> arguments);

// To be called by the second start. The loader only warns about a preload that it cannot load, and this host
// is not what was asked for: throws usage_error then.
void expect_captured_host();

#endif
