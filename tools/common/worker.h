// SPDX-License-Identifier: Apache-2.0
// Work that may hang, crash, or leave processes behind is done in a process of its own, under a limit of
// time.
#ifndef DISKSCOUT_TOOLS_COMMON_WORKER_H
#define DISKSCOUT_TOOLS_COMMON_WORKER_H

#include "process_tree.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the work tells whoever waits for it.
class worker_link_t
{
public:
	explicit worker_link_t(int to) : to_(to) {}

	// Where the work is now, "container list": told when it does not come to an end.
	void stage(std::string_view name) const;
	// The result, once, at the end. It counts whatever becomes of the worker behind it, but for the
	// limit.
	void result(const void *bytes, std::size_t count) const;
	void result(std::string_view bytes) const { result(bytes.data(), bytes.size()); }
	// That the work cannot be done, and why, in place of a result.
	void failure(std::string_view why) const;

private:
	void frame(unsigned kind, const void *bytes, std::size_t count) const;
	int to_;
};

using work_t = std::function<void(const worker_link_t &to)>;

struct task_t {
	std::string_view stage = {};       // where the work is at first
	std::chrono::milliseconds limit{}; // none: 0
	std::string directory = {};        // where it works; empty: where we are
	bool reads_input = false;          // our standard input is the work's
};

// What came of it.
struct worked_t {
	bool is_done = false;
	bool is_timed_out = false;
	std::string failure = {}; // not done: "timed out after 5 s at container list"
	pids_t left_behind = {};  // those that the kernel does not let go of
	// Not done: the exit status, where the work ended its process by itself.
	std::optional<int> exit_status = {};
	std::vector<char> received = {};
	std::size_t from = 0, count = 0; // of the result in what was received; aligned for any record

	const char *result() const { return received.data() + from; }
	char *result() { return received.data() + from; }
	std::string_view text() const { return {result(), count}; }
};

// Done by a copy of this process, which sees all that is in memory now; what it changes there nobody sees.
// Its standard input and output are empty, but for the input of a task that reads it; what it writes on
// standard error we write there. It has no signal blocked or ignored, and does not outlive us. When this
// returns, none of the processes that it has started is left, but for those that are told; whoever was below
// this process before is spared. Never throws for what the work does.
worked_t run_in_worker(const task_t &task, const work_t &work);

// "5 s", "0.5 s".
std::string in_seconds(std::chrono::milliseconds time);

#endif
