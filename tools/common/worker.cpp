// SPDX-License-Identifier: Apache-2.0
// Work in a process of its own, and waiting for it.
#include "worker.h"

#include "kernel.h"
#include "output.h"
#include "worker_frames.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <exception>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using clock_type = std::chrono::steady_clock;

// ---- the worker ----

// As a program expects them that somebody starts at a terminal. What catches our own crashes stays.
static void restore_signals()
{
	for (int number = 1; number < NSIG; number++) {
		struct sigaction now;
		if (sigaction(number, nullptr, &now) == 0 && now.sa_handler == SIG_IGN)
			signal(number, SIG_DFL);
	}
	for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGCHLD, SIGPIPE})
		signal(number, SIG_DFL);
	sigset_t none;
	sigemptyset(&none);
	sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] static void do_work(const task_t &task, const work_t &work, int to)
{
	const worker_link_t link(to);
	try {
		if (!task.directory.empty() && chdir(task.directory.c_str()) != 0)
			link.failure(
				fmt::format("{} cannot be entered: {}", task.directory, strerror(errno)));
		else
			work(link);
	} catch (const std::exception &error) {
		link.failure(error.what());
	}
	leave_copy(0);
}

namespace
{
struct pipe_t {
	~pipe_t()
	{
		shut(0);
		shut(1);
	}
	bool open() { return pipe2(ends, O_CLOEXEC) == 0 && fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0; }
	void shut(int end)
	{
		if (ends[end] >= 0)
			close(ends[end]);
		ends[end] = -1;
	}
	int ends[2] = {-1, -1};
};

// What leads to and from a worker.
struct wiring_t {
	bool open()
	{
		// Past the library: a captured host has devices of its own.
		null.ends[0] = kernel_open("/dev/null", O_RDWR);
		return null.ends[0] >= 0 && answer.open() && errors.open();
	}
	void become_worker(const task_t &task) const
	{
		if (!task.reads_input)
			dup2(null.ends[0], STDIN_FILENO);
		dup2(null.ends[0], STDOUT_FILENO);
		dup2(errors.ends[1], STDERR_FILENO);
	}
	void become_caller()
	{
		null.shut(0);
		answer.shut(1);
		errors.shut(1);
	}
	pipe_t answer, errors, null;
};
} // namespace

[[noreturn]] static void be_worker(pid_t caller, const wiring_t &wiring, const task_t &task,
                                   const work_t &work)
{
	setpgid(0, 0);
	prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0);
	if (getppid() != caller)
		leave_copy(1);
	adopt_orphans();
	restore_signals();
	wiring.become_worker(task);
	do_work(task, work, wiring.answer.ends[1]);
}

// ---- who waits for it ----

namespace
{
// As long as it lives, the end of a child interrupts wait(), whatever our caller wants done about it, and
// nothing that we write ends us.
class attention_t
{
public:
	attention_t()
	{
		sigset_t child;
		sigemptyset(&child);
		sigaddset(&child, SIGCHLD);
		sigprocmask(SIG_BLOCK, &child, &mask_before_);
		struct sigaction wanted = {};
		wanted.sa_handler = [](int) {};
		sigaction(SIGCHLD, &wanted, &child_before_);
		wanted.sa_handler = SIG_IGN;
		sigaction(SIGPIPE, &wanted, &pipe_before_);
	}
	~attention_t()
	{
		sigaction(SIGPIPE, &pipe_before_, nullptr);
		sigaction(SIGCHLD, &child_before_, nullptr);
		sigprocmask(SIG_SETMASK, &mask_before_, nullptr);
	}
	attention_t(const attention_t &) = delete;
	attention_t &operator=(const attention_t &) = delete;

	void wait(pollfd *polled, nfds_t count, const std::chrono::nanoseconds *left) const
	{
		sigset_t mask = mask_before_;
		sigdelset(&mask, SIGCHLD);
		timespec time = {};
		if (left) {
			const auto whole = std::chrono::duration_cast<std::chrono::seconds>(*left);
			time.tv_sec = static_cast<time_t>(whole.count());
			time.tv_nsec = static_cast<long>((*left - whole).count());
		}
		if (ppoll(polled, count, left ? &time : nullptr, &mask) < 0)
			for (nfds_t i = 0; i < count; i++)
				polled[i].revents = 0;
	}

private:
	sigset_t mask_before_;
	struct sigaction child_before_, pipe_before_;
};

// What the worker says on standard error, on its way to ours. It does not wait for whoever reads there: his
// time is not the work's.
class relay_t
{
public:
	explicit relay_t(pipe_t &from) : from_(from) {}

	// What is awaited of both sides; nothing where that cannot help.
	pollfd source() const { return {held() < MOST ? from_.ends[0] : -1, POLLIN, 0}; }
	pollfd sink() const { return {held() > 0 ? STDERR_FILENO : -1, POLLOUT, 0}; }

	// False: there is no more, now.
	bool take()
	{
		char piece[1 << 14];
		const ssize_t count = kernel_read(from_.ends[0], piece, sizeof piece);
		if (count > 0)
			text_.append(piece, static_cast<std::size_t>(count));
		else if (count == 0 || (errno != EINTR && errno != EAGAIN))
			from_.shut(0);
		return count > 0;
	}

	void pass_on()
	{
		// A pipe that takes anything takes as much without letting us wait.
		const std::size_t piece = std::min<std::size_t>(held(), PIPE_BUF);
		const ssize_t count = kernel_write(STDERR_FILENO, text_.data() + begin_, piece);
		if (count < 0 && (errno == EINTR || errno == EAGAIN))
			return;
		// Nobody is there any more, as a rule.
		begin_ += count < 0 ? held() : static_cast<std::size_t>(count);
		if (begin_ == text_.size() || begin_ >= MOST) {
			text_.erase(0, begin_);
			begin_ = 0;
		}
	}

	// What was on its way. Who reads it may take his time, but not when we have said how long we take.
	void finish(bool is_in_time)
	{
		constexpr int PATIENCE = 200;
		while (from_.ends[0] >= 0 && held() < MOST && take()) {
		}
		while (held() > 0) {
			pollfd polled = sink();
			const int ready = poll(&polled, 1, is_in_time ? -1 : PATIENCE);
			if (ready == 0)
				return;
			if (ready > 0)
				pass_on();
		}
	}

private:
	static constexpr std::size_t MOST = 16 << 20;
	std::size_t held() const { return text_.size() - begin_; }

	pipe_t &from_;
	std::string text_;
	std::size_t begin_ = 0; // of what is still to be said
};
} // namespace

// Whether there may be more, now.
static bool receive(pipe_t &answer, std::vector<char> &into)
{
	constexpr std::size_t PIECE = 1 << 16;
	const std::size_t before = into.size();
	into.resize(before + PIECE);
	const ssize_t count = kernel_read(answer.ends[0], into.data() + before, PIECE);
	into.resize(before + (count > 0 ? static_cast<std::size_t>(count) : 0));
	if (count == 0)
		answer.shut(0);
	return count > 0;
}

// Until it ends or its time is over. It may close the pipe and go on, and others may hold the pipe when it
// has ended: the one says as little as the other. Whether it has ended.
static bool listen(pid_t worker, wiring_t &wiring, relay_t &relay, const attention_t &attention,
                   const task_t &task, std::vector<char> &received, int &status)
{
	const bool is_limited = task.limit.count() > 0;
	const auto end = clock_type::now() + task.limit;
	for (;;) {
		if (waitpid(worker, &status, WNOHANG) != 0) {
			while (receive(wiring.answer, received)) {
			}
			return true;
		}
		const std::chrono::nanoseconds left = end - clock_type::now();
		if (is_limited && left.count() <= 0)
			return false;
		pollfd polled[] = {{wiring.answer.ends[0], POLLIN, 0}, relay.source(), relay.sink()};
		attention.wait(polled, 3, is_limited ? &left : nullptr);
		if (polled[0].revents)
			receive(wiring.answer, received);
		if (polled[1].revents)
			relay.take();
		if (polled[2].revents)
			relay.pass_on();
	}
}

// ---- what came of it ----

std::string in_seconds(std::chrono::milliseconds time)
{
	return fmt::format("{:g} s", std::chrono::duration<double>(time).count());
}

static std::string end_of(int status)
{
	if (WIFSIGNALED(status))
		return fmt::format("was ended by signal {} ({})", WTERMSIG(status),
		                   strsignal(WTERMSIG(status)));
	return fmt::format("ended with status {}", WEXITSTATUS(status));
}

static void judge(worked_t &worked, const task_t &task, bool is_in_time, int status)
{
	const frames_t frames = read_frames(worked, task.stage);
	const std::string where = frames.stage.empty() ? "" : " at " + frames.stage;
	if (!is_in_time) {
		worked.is_timed_out = true;
		worked.failure = fmt::format("timed out after {}{}", in_seconds(task.limit), where);
	} else if (!frames.failure.empty()) {
		worked.failure = frames.failure;
	} else if (!frames.has_result) {
		if (WIFEXITED(status))
			worked.exit_status = WEXITSTATUS(status);
		worked.failure = fmt::format("the process for it {}{}", end_of(status), where);
	}
	worked.is_done = worked.failure.empty();
}

static worked_t not_started()
{
	worked_t worked;
	worked.failure = fmt::format("no process can be started for it: {}", strerror(errno));
	return worked;
}

worked_t run_in_worker(const task_t &task, const work_t &work)
{
	// Ours must not be in the places of the standard ones.
	occupy_standard_descriptors();
	wiring_t wiring;
	if (!wiring.open())
		return not_started();
	ending_t how;
	if (has_children())
		how.spared = descendants();
	adopt_orphans();
	const attention_t attention;
	const pid_t caller = getpid(), worker = fork();
	if (worker < 0)
		return not_started();
	if (worker == 0)
		be_worker(caller, wiring, task, work);
	setpgid(worker, worker);
	how.group = worker;
	wiring.become_caller();
	worked_t worked;
	relay_t relay(wiring.errors);
	int status = 0;
	const bool is_in_time = listen(worker, wiring, relay, attention, task, worked.received, status);
	wiring.answer.shut(0);
	if (!is_in_time || !how.spared.empty() || has_children())
		worked.left_behind = end_descendants(how);
	relay.finish(is_in_time);
	judge(worked, task, is_in_time, status);
	return worked;
}
