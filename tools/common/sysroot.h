// SPDX-License-Identifier: Apache-2.0
// Captured hosts.
#ifndef DISKSCOUT_TOOLS_COMMON_SYSROOT_H
#define DISKSCOUT_TOOLS_COMMON_SYSROOT_H

#include <string>
#include <vector>

// Who tells that the host's table is at fault: the replay library, which then ends the program with status 2,
// or expect_captured_host().
enum class host_fault_t { TOLD_BY_LIBRARY, THROWN };

// Starts this program anew, with the replay library loaded before all others and told to show the host that
// is captured in the directory. The arguments, argv[0] included, are those of the new start; they must not
// lead here again. Throws captured_host_error when the directory holds no captured host, and does not return
// else.
[[noreturn]] void restart_on_captured_host(const std::string &directory, std::vector<std::string> arguments,
                                           host_fault_t fault = host_fault_t::TOLD_BY_LIBRARY);

// Whether this is the second start.
bool shows_captured_host();

// To be called by the second start, before anything is asked of the host. The loader only warns about a
// preload that it cannot load, and the running host is not what was asked for: throws captured_host_error
// then, and when the table is at fault.
void expect_captured_host();

#endif
