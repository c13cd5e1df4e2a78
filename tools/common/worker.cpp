// Work in a process of its own. The result comes in frames through a pipe that nobody but the worker holds:
// its end is the worker's end, whoever else is still there.
#include "worker.h"

#include "kernel.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using clock_type = std::chrono::steady_clock;

// ---- frames ----

enum frame_kind_t : std::uint32_t { STAGE, RESULT, FAILURE };

// As long as any record's alignment is, and so is what stands behind it.
struct alignas(16) frame_t {
	std::uint32_t kind;
	std::uint64_t count;
};

static std::size_t padded(std::size_t count)
{
	return (count + alignof(frame_t) - 1) / alignof(frame_t) * alignof(frame_t);
}

static void write_whole(int to, const void *bytes, std::size_t count)
{
	const char *next = static_cast<const char *>(bytes);
	while (count > 0) {
		const ssize_t written = kernel_write(to, next, count);
		if (written < 0 && errno == EINTR)
			continue;
		if (written <= 0)
			return;
		next += written;
		count -= static_cast<std::size_t>(written);
	}
}

void worker_link_t::frame(unsigned kind, const void *bytes, std::size_t count) const
{
	constexpr int LARGEST = 1 << 20;
	constexpr std::size_t LARGE = 1 << 16;
	const frame_t head = {kind, count};
	const char padding[alignof(frame_t)] = {};
	// A long answer goes over in a few pieces, then.
	if (count > LARGE)
		fcntl(to_, F_SETPIPE_SZ, LARGEST);
	write_whole(to_, &head, sizeof head);
	write_whole(to_, bytes, count);
	write_whole(to_, padding, padded(count) - count);
}

void worker_link_t::stage(std::string_view name) const
{
	frame(STAGE, name.data(), name.size());
}

void worker_link_t::result(const void *bytes, std::size_t count) const
{
	frame(RESULT, bytes, count);
}

void worker_link_t::failure(std::string_view why) const
{
	frame(FAILURE, why.data(), why.size());
}

// ---- the worker ----

// What it has started by itself is left to a keeper, where there is one.
static void die_with(pid_t parent)
{
	prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0);
	if (getppid() != parent)
		_exit(0);
}

static void take_place(const task_t &task, int null, int errors)
{
	if (!task.reads_input)
		dup2(null, STDIN_FILENO);
	dup2(null, STDOUT_FILENO);
	dup2(errors, STDERR_FILENO);
}

static void restore_signals()
{
	sigset_t none;
	sigemptyset(&none);
	sigprocmask(SIG_SETMASK, &none, nullptr);
	for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGCHLD, SIGPIPE})
		signal(number, SIG_DFL);
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
	_exit(0);
}

// ---- who waits for it ----

namespace
{
struct pipe_t {
	~pipe_t()
	{
		shut(0);
		shut(1);
	}
	bool open() { return pipe2(ends, O_CLOEXEC) == 0; }
	void shut(int end)
	{
		if (ends[end] >= 0)
			close(ends[end]);
		ends[end] = -1;
	}
	int ends[2] = {-1, -1};
};
} // namespace

std::string in_seconds(std::chrono::milliseconds time)
{
	return fmt::format("{:g} s", std::chrono::duration<double>(time).count());
}

// False at its end.
static bool receive(int from, std::vector<char> &into)
{
	constexpr std::size_t PIECE = 1 << 16;
	const std::size_t before = into.size();
	into.resize(before + PIECE);
	const ssize_t count = kernel_read(from, into.data() + before, PIECE);
	into.resize(before + (count > 0 ? static_cast<std::size_t>(count) : 0));
	return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

static bool relay(int from)
{
	char piece[4096];
	const ssize_t count = kernel_read(from, piece, sizeof piece);
	if (count > 0)
		write_whole(STDERR_FILENO, piece, static_cast<std::size_t>(count));
	return count > 0 || (count < 0 && errno == EINTR);
}

static int milliseconds_until(clock_type::time_point end, bool is_limited)
{
	if (!is_limited)
		return -1;
	const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - clock_type::now()).count();
	return static_cast<int>(std::clamp<long long>(left, 0, 1 << 30));
}

// Whether the worker has come to its end in time.
static bool listen(pipe_t &answer, pipe_t &errors, std::chrono::milliseconds limit,
                   std::vector<char> &received)
{
	const auto end = clock_type::now() + limit;
	bool is_open = true;
	while (is_open) {
		pollfd polled[] = {{answer.ends[0], POLLIN, 0}, {errors.ends[0], POLLIN, 0}};
		const int ready = poll(polled, 2, milliseconds_until(end, limit.count() > 0));
		if (ready == 0)
			return false;
		if (ready < 0)
			continue;
		if (polled[1].revents && !relay(errors.ends[0]))
			errors.shut(0);
		if (polled[0].revents)
			is_open = receive(answer.ends[0], received);
		// One that never stops talking has a limit, too.
		if (limit.count() > 0 && clock_type::now() >= end && is_open)
			return false;
	}
	return true;
}

// What was on its way when the worker ended. Somebody whom it left behind may go on and on.
static void drain(pipe_t &errors)
{
	constexpr int MOST_PIECES = 64;
	for (int i = 0; i < MOST_PIECES && errors.ends[0] >= 0; i++) {
		pollfd polled = {errors.ends[0], POLLIN, 0};
		if (poll(&polled, 1, 0) <= 0 || !relay(errors.ends[0]))
			return;
	}
}

namespace
{
struct frames_t {
	std::string stage;
	bool has_result = false;
	std::string failure;
};
} // namespace

static frames_t read_frames(worked_t &worked, std::string_view stage)
{
	frames_t frames;
	frames.stage = stage;
	const std::vector<char> &bytes = worked.received;
	for (std::size_t at = 0; at + sizeof(frame_t) <= bytes.size();) {
		frame_t head;
		memcpy(&head, bytes.data() + at, sizeof head);
		at += sizeof head;
		if (head.count > bytes.size() - at || padded(head.count) > bytes.size() - at)
			break;
		const std::string_view text(bytes.data() + at, head.count);
		if (head.kind == STAGE)
			frames.stage = text;
		else if (head.kind == FAILURE)
			frames.failure = text;
		else {
			frames.has_result = true;
			worked.from = at;
			worked.count = head.count;
		}
		at += padded(head.count);
	}
	return frames;
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
		worked.failure = fmt::format("the process for it {}{}", end_of(status), where);
	}
	worked.is_done = worked.failure.empty();
}

static worked_t not_started(const char *what)
{
	worked_t worked;
	worked.failure = fmt::format("{}: {}", what, strerror(errno));
	return worked;
}

worked_t run_in_worker(const task_t &task, const work_t &work)
{
	pipe_t answer, errors, null;
	// Past the library: a captured host has devices of its own.
	null.ends[0] = kernel_open("/dev/null", O_RDWR);
	if (null.ends[0] < 0 || !answer.open() || !errors.open())
		return not_started("no process can be started for it");
	adopt_orphans();
	const pid_t parent = getpid();
	const pid_t worker = fork();
	if (worker < 0)
		return not_started("no process can be started for it");
	if (worker == 0) {
		die_with(parent);
		adopt_orphans();
		restore_signals();
		take_place(task, null.ends[0], errors.ends[1]);
		do_work(task, work, answer.ends[1]);
	}
	answer.shut(1);
	errors.shut(1);
	worked_t worked;
	const bool is_in_time = listen(answer, errors, task.limit, worked.received);
	int status = 0;
	if (is_in_time)
		while (waitpid(worker, &status, 0) < 0 && errno == EINTR) {
		}
	drain(errors);
	if (!is_in_time || has_children())
		worked.left_behind = end_descendants();
	judge(worked, task, is_in_time, status);
	return worked;
}
