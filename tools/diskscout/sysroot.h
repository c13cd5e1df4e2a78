/* Captured hosts. */
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SYSROOT_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SYSROOT_H

#include <string>
#include <vector>

/*
 * Starts this program anew, with the replay library loaded before all others and told to show the host that
 * is captured in the directory. The arguments, argv[0] included, are those of the new start; they must not
 * lead here again. Throws usage_error when the directory holds no captured host, and does not return else.
 */
[[noreturn]] void restart_on_captured_host(const std::string &directory, std::vector<std::string> arguments);

/* Whether this process sees a captured host, or could be made to. */
bool replay_is_loaded();

#endif
