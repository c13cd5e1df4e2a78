// SPDX-License-Identifier: Apache-2.0
// Processes that somebody started for us, and that shall not outlive what they were started for.
#ifndef DISKSCOUT_TOOLS_COMMON_PROCESS_TREE_H
#define DISKSCOUT_TOOLS_COMMON_PROCESS_TREE_H

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

using pids_t = std::vector<pid_t>;

// From now on whoever loses its parent somewhere below this process becomes its child, also one that has
// started a session of its own. Kernels before 3.4 know nothing of it: such processes get away there.
void adopt_orphans();

// All that are below this process, at whatever depth.
pids_t descendants();

// Those without a terminal whose working directory this is, or lies in it: who has a terminal is somebody who
// looks at it. The path has no links.
pids_t processes_in(const std::string &directory);

// SIGTERM; to those that are still there after the grace, SIGKILL. All of them, not only those that were
// there at first. Returns those that the kernel does not let go of, which wait for a device as a rule: they
// are given up after another `patience`.
struct ending_t {
	std::chrono::milliseconds grace = std::chrono::seconds(1);
	std::chrono::milliseconds patience = std::chrono::seconds(1);
	pids_t spared = {}; // neither these nor who is below them
	pid_t group = 0;    // where no /proc tells who is there, this process group is ended; none: 0
};
pids_t end_descendants(const ending_t &how = {});

// The same for these, which may be no children of ours.
pids_t end_processes_in(const std::string &directory, const ending_t &how = {});

// The same for those whose programs were started with this line, "NAME=value", in their environment.
pids_t end_processes_started_with(const std::string &line, const ending_t &how = {});

// Whether this process has children, ended ones included.
bool has_children();

// Ends a copy of a process: what the whole one does at its end is not for it to do.
[[noreturn]] void leave_copy(int status);

#endif
