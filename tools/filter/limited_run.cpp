// SPDX-License-Identifier: Apache-2.0
// One run of a program, which ends.
#include "limited_run.h"

#include "output.h"
#include "process_tree.h"
#include "worker.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <optional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

static int checked(int result, const char *what)
{
	if (result < 0)
		throw std::system_error(errno, std::generic_category(), what);
	return result;
}

// ---- the program ----

// Tells why it cannot be started through a pipe that a started one has no more.
[[noreturn]] static void become(const std::vector<std::string> &tool, int cause, pid_t parent)
{
	std::vector<char *> words;
	words.reserve(tool.size() + 1);
	for (const std::string &word : tool)
		words.push_back(const_cast<char *>(word.c_str()));
	words.push_back(nullptr);
	// Should all of ours be killed at once, it goes with us.
	prctl(PR_SET_PDEATHSIG, SIGKILL);
	if (getppid() == parent)
		execvp(words[0], words.data());
	const int error = errno;
	const ssize_t told = write(cause, &error, sizeof error);
	_exit(told == sizeof error ? STATUS_NOT_FOUND : STATUS_NOT_STARTED);
}

namespace
{
struct started_t {
	pid_t pid;
	int error; // why it is no program; 0: it is one
};
} // namespace

static started_t start(const std::vector<std::string> &tool, const sigset_t &mask)
{
	int cause[2];
	checked(pipe2(cause, O_CLOEXEC), "no pipe can be made");
	// Where no /proc tells who is below us its group can be ended all the same.
	const pid_t parent = getpid();
	started_t started = {checked(fork(), "no process can be started"), 0};
	if (started.pid == 0) {
		setpgid(0, 0);
		sigprocmask(SIG_SETMASK, &mask, nullptr);
		become(tool, cause[1], parent);
	}
	close(cause[1]);
	while (read(cause[0], &started.error, sizeof started.error) < 0 && errno == EINTR) {
	}
	close(cause[0]);
	return started;
}

// ---- the wait ----

// Orphans that have come to us are let go beside.
static std::optional<int> status_of(pid_t tool)
{
	int status;
	for (pid_t ended; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
		if (ended == tool)
			return status;
	}
	return std::nullopt;
}

// None when the limit comes first. The signal of a child's end is blocked: none is missed.
static std::optional<int> wait_for(pid_t tool, const sigset_t &child_ended, std::chrono::milliseconds limit)
{
	using clock = std::chrono::steady_clock;
	using std::chrono::nanoseconds;
	constexpr nanoseconds LONG = std::chrono::hours(1), SECOND = std::chrono::seconds(1);
	const auto end = clock::now() + limit;
	for (;;) {
		if (const std::optional<int> status = status_of(tool))
			return status;
		const nanoseconds left = limit.count() > 0 ? end - clock::now() : LONG;
		if (left.count() <= 0)
			return std::nullopt;
		const timespec time = {left / SECOND, (left % SECOND).count()};
		sigtimedwait(&child_ended, nullptr, &time);
	}
}

// ---- ----

static std::string stuck(const pids_t &left)
{
	return left.empty()
	               ? ""
	               : fmt::format("; process {} cannot be ended: it waits in the kernel", left.front());
}

static int judge(const std::string &tool, int status, const pids_t &left)
{
	if (WIFSIGNALED(status)) {
		complain(fmt::format("{} was ended by signal {} ({}){}", tool, WTERMSIG(status),
		                     strsignal(WTERMSIG(status)), stuck(left)));
		return STATUS_SIGNAL + WTERMSIG(status);
	}
	if (!left.empty())
		complain(tool + stuck(left));
	return WEXITSTATUS(status);
}

int run_limited(const std::vector<std::string> &tool, std::chrono::milliseconds limit)
{
	sigset_t child_ended, before;
	sigemptyset(&child_ended);
	sigaddset(&child_ended, SIGCHLD);
	sigprocmask(SIG_BLOCK, &child_ended, &before);
	adopt_orphans();
	const started_t started = start(tool, before);
	if (started.error != 0) {
		waitpid(started.pid, nullptr, 0);
		complain(fmt::format("{} cannot be started: {}", tool.front(), strerror(started.error)));
		return started.error == ENOENT ? STATUS_NOT_FOUND : STATUS_NOT_STARTED;
	}
	const std::optional<int> status = wait_for(started.pid, child_ended, limit);
	ending_t how;
	how.group = started.pid;
	const pids_t left = !status || has_children() ? end_descendants(how) : pids_t();
	if (status)
		return judge(tool.front(), *status, left);
	complain(fmt::format("{} timed out after {}{}", tool.front(), in_seconds(limit), stuck(left)));
	return STATUS_TIMED_OUT;
}
