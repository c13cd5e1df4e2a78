// SPDX-License-Identifier: Apache-2.0
// Processes that somebody started for us.
#include "process_tree.h"

#include "kernel.h"

#include "process_table.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using processes_t = std::vector<process_t>;

void leave_copy(int status)
{
#ifdef DISKSCOUT_COVERAGE
	// Every library writes what it has counted, and does so at a whole end only. It takes long: tests
	// choose.
	if (getenv("DISKSCOUT_COUNTS_COPIES")) {
		close(STDOUT_FILENO); // what the original has still to write
		exit(status);
	}
#endif
	_exit(status);
}

void adopt_orphans()
{
	prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
}

bool has_children()
{
	siginfo_t info;
	return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

// ---- who is there ----

static bool holds(const pids_t &pids, pid_t pid)
{
	return std::find(pids.begin(), pids.end(), pid) != pids.end();
}

static processes_t below(pid_t root, const pids_t &spared)
{
	const processes_t processes = read_processes();
	processes_t found;
	pids_t open = {root};
	while (!open.empty()) {
		const pid_t parent = open.back();
		open.pop_back();
		for (const process_t &process : processes) {
			if (process.parent != parent || holds(spared, process.pid))
				continue;
			open.push_back(process.pid);
			if (!process.is_ended)
				found.push_back(process);
		}
	}
	return found;
}

// All but this process and those that have ended.
template <class Condition> static processes_t others_that(const Condition &are_meant)
{
	processes_t found = read_processes();
	const auto is_not = [&](const process_t &process) {
		return process.pid == getpid() || process.is_ended || !are_meant(process);
	};
	found.erase(std::remove_if(found.begin(), found.end(), is_not), found.end());
	return found;
}

static processes_t working_in(const std::string &directory)
{
	return others_that([&](const process_t &process) {
		return !process.has_terminal && works_in(process.pid, directory);
	});
}

static pids_t pids_of(const processes_t &processes)
{
	pids_t pids;
	for (const process_t &process : processes)
		pids.push_back(process.pid);
	return pids;
}

pids_t descendants()
{
	return pids_of(below(getpid(), {}));
}

pids_t processes_in(const std::string &directory)
{
	return pids_of(working_in(directory));
}

// ---- ending them ----

namespace
{
// Those that shall go.
struct prey_t {
	std::function<processes_t()> find;
	// The table is read piece by piece, and who comes into being meanwhile is missed: none found may be
	// some.
	std::function<bool()> is_gone;
	pid_t group = 0;
};
} // namespace

static void reap()
{
	while (waitpid(-1, nullptr, WNOHANG) > 0) {
	}
}

static bool is_same(const process_t &one, const process_t &other)
{
	return one.pid == other.pid && one.start == other.start;
}

// Each of them once, or time and again. Whether there was a new one.
static bool signal_all(const processes_t &found, processes_t &told, int signal, bool again)
{
	bool is_new = false;
	for (const process_t &process : found) {
		const bool was_told = std::any_of(told.begin(), told.end(), [&](const process_t &other) {
			return is_same(process, other);
		});
		is_new |= !was_told;
		if (was_told && !again)
			continue;
		send_signal(process, signal);
		// One that is stopped hears of nothing else.
		if (signal != SIGKILL)
			send_signal(process, SIGCONT);
		if (!was_told)
			told.push_back(process);
	}
	return is_new;
}

// Until there are none, or the time is over.
static bool signal_until(const prey_t &prey, int signal, bool again, std::chrono::milliseconds time)
{
	using clock = std::chrono::steady_clock;
	constexpr std::chrono::milliseconds PAUSE(2);
	const auto end = clock::now() + time;
	processes_t told;
	for (bool is_first = true;; is_first = false) {
		reap();
		if (prey.is_gone())
			return true;
		const bool is_new = signal_all(prey.find(), told, signal, again);
		if (prey.group > 0 && (is_first || again))
			kill(-prey.group, signal);
		if (clock::now() >= end)
			return false;
		// Where new ones come all the time they are gone before we have slept.
		if (!is_new)
			kernel_pause(PAUSE);
	}
}

static pids_t end_all(const prey_t &prey, const ending_t &how)
{
	const bool is_gone = signal_until(prey, SIGTERM, false, how.grace) ||
	                     signal_until(prey, SIGKILL, true, how.patience);
	reap();
	if (is_gone)
		return {};
	const pids_t left = pids_of(prey.find());
	return left.empty() && prey.group > 0 ? pids_t{prey.group} : left;
}

pids_t end_descendants(const ending_t &how)
{
	const auto find = [&] { return below(getpid(), how.spared); };
	const auto is_gone = [&] { return how.spared.empty() ? !has_children() : find().empty(); };
	// A number whose group is gone may be anybody's: it is used only where nothing better is known.
	return end_all({find, is_gone, read_processes().empty() ? how.group : 0}, how);
}

pids_t end_processes_in(const std::string &directory, const ending_t &how)
{
	const auto find = [&] { return working_in(directory); };
	return end_all({find, [&] { return find().empty(); }}, how);
}

pids_t end_processes_started_with(const std::string &line, const ending_t &how)
{
	const auto find = [&] {
		return others_that(
			[&](const process_t &process) { return was_started_with(process.pid, line); });
	};
	return end_all({find, [&] { return find().empty(); }}, how);
}
