// SPDX-License-Identifier: Apache-2.0
// The kernel's table of processes. It is asked past the C library: a captured host has a /proc of its own, in
// which nobody of ours is.
#ifndef DISKSCOUT_TOOLS_COMMON_PROCESS_TABLE_H
#define DISKSCOUT_TOOLS_COMMON_PROCESS_TABLE_H

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

struct process_t {
	pid_t pid = 0;
	pid_t parent = 0;
	bool is_ended = true; // and waits for its parent to notice
	bool has_terminal = false;
	std::uint64_t start =
		0; // clock ticks since the machine's start: who else gets its number began later
};

// A process that is not there is an ended one without a parent.
process_t read_process(pid_t pid);

// All that there are. None when there is no /proc, or that of another space of numbers.
std::vector<process_t> read_processes();

// Whether this is its working directory, or its working directory lies in it. The path has no links.
bool works_in(pid_t pid, const std::string &directory);

// Whether this line, "NAME=value", was in its environment when its program was started; of those that may not
// be looked at, it was not.
bool was_started_with(pid_t pid, const std::string &line);

// False: it is gone. Whoever has its number by now gets no signal, where the kernel can tell them apart.
bool send_signal(const process_t &to, int signal);

#endif
