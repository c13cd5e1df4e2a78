// SPDX-License-Identifier: Apache-2.0
// Nothing outlives a run. The started process holds one end of a pipe, `life`: however it ends, the keeper
// reads its end there. What became of the work goes back through another one.
#include "keeper.h"

#include "kernel.h"
#include "output.h"
#include "private_directory.h"
#include "process_tree.h"
#include "program.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace
{
struct descriptor_t {
	~descriptor_t() { shut(); }
	void shut()
	{
		if (number >= 0)
			close(number);
		number = -1;
	}
	int number = -1;
};

struct channel_t {
	bool open()
	{
		int ends[2];
		if (pipe2(ends, O_CLOEXEC) != 0)
			return false;
		reader.number = ends[0];
		writer.number = ends[1];
		return true;
	}
	descriptor_t reader, writer;
};

// How the work ended, or why there could be none.
struct verdict_t {
	int error = 0;
	int status = 0;
};

// What the three share.
struct trio_t {
	channel_t life, verdict;
	descriptor_t signals;
	sigset_t ending; // signals that end the run
	sigset_t before; // what our caller has blocked
};
} // namespace

[[noreturn]] static void fail(int error)
{
	throw std::system_error(error, std::generic_category(), "no process can be started for the work");
}

// Those that somebody wants us to ignore, nohup for one, are nothing to us.
static sigset_t ending_signals()
{
	sigset_t set;
	sigemptyset(&set);
	for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
		struct sigaction now;
		if (sigaction(number, nullptr, &now) == 0 && now.sa_handler != SIG_IGN)
			sigaddset(&set, number);
	}
	return set;
}

static bool prepare(trio_t &trio)
{
	trio.ending = ending_signals();
	sigset_t heard = trio.ending;
	sigaddset(&heard, SIGCHLD);
	trio.signals.number = signalfd(-1, &heard, SFD_CLOEXEC | SFD_NONBLOCK);
	if (trio.signals.number < 0 || !trio.life.open() || !trio.verdict.open())
		return false;
	sigprocmask(SIG_BLOCK, &heard, &trio.before);
	// Ignored, it would keep us from hearing how anybody ended.
	signal(SIGCHLD, SIG_DFL);
	return true;
}

// Which of the signals that end the run has come; none: 0.
static int ending_signal(const trio_t &trio)
{
	signalfd_siginfo told;
	while (kernel_read(trio.signals.number, &told, sizeof told) == sizeof told) {
		const int number = static_cast<int>(told.ssi_signo);
		if (number != SIGCHLD)
			return number;
	}
	return 0;
}

// ---- the keeper ----

static void close_standard_descriptors()
{
	const int null = kernel_open("/dev/null", O_RDWR);
	for (int descriptor = 0; descriptor <= 2; descriptor++) {
		if (null < 0 || dup2(null, descriptor) < 0)
			close(descriptor);
	}
}

// It may wait for what does not answer, and we must not. Without another process the next run will do it.
static pid_t start_sweeper(trio_t &trio)
{
	if (!are_private_directories())
		return -1;
	const pid_t sweeper = fork();
	if (sweeper != 0)
		return sweeper;
	trio.verdict.writer.shut();
	sigprocmask(SIG_SETMASK, &trio.before, nullptr);
	sweep_private_directories();
	leave_copy(0);
}

static void wait_for_sweeper(pid_t sweeper)
{
	constexpr int TIMES = 500;
	for (int i = 0; i < TIMES && sweeper > 0 && waitpid(sweeper, nullptr, WNOHANG) == 0; i++)
		kernel_pause(std::chrono::milliseconds(5));
}

// The work has cleared up behind itself. What is left all the same was given up by it.
static void end_remainder()
{
	using std::chrono::milliseconds;
	ending_t how;
	how.grace = milliseconds(0);
	how.patience = milliseconds(100);
	if (has_children())
		end_descendants(how);
}

static void end_everything()
{
	end_descendants();
	sweep_private_directories();
}

static bool has_ended(pid_t work, int &status)
{
	for (;;) {
		int of_this;
		const pid_t ended = waitpid(-1, &of_this, WNOHANG);
		if (ended <= 0)
			return false;
		if (ended == work) {
			status = of_this;
			return true;
		}
	}
}

[[noreturn]] static void keep(pid_t work, trio_t &trio)
{
	close_standard_descriptors();
	// Whoever is to be told may be gone.
	signal(SIGPIPE, SIG_IGN);
	const pid_t sweeper = start_sweeper(trio);
	verdict_t verdict;
	while (!has_ended(work, verdict.status)) {
		pollfd polled[] = {{trio.life.reader.number, POLLIN, 0}, {trio.signals.number, POLLIN, 0}};
		poll(polled, 2, -1);
		if (polled[0].revents || ending_signal(trio)) {
			end_everything();
			leave_copy(1);
		}
	}
	if (WIFEXITED(verdict.status)) {
		wait_for_sweeper(sweeper);
		end_remainder();
		// Of work that somebody else has let exit.
		wait_for_sweeper(start_sweeper(trio));
	} else {
		end_everything();
	}
	leave_copy(kernel_write(trio.verdict.writer.number, &verdict, sizeof verdict) == sizeof verdict ? 0
	                                                                                                : 1);
}

// ---- the process that was started ----

[[noreturn]] static void end_by(int number)
{
	// Whose memory is of any use has left it.
	prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
	sigset_t set;
	sigemptyset(&set);
	sigaddset(&set, number);
	signal(number, SIG_DFL);
	sigprocmask(SIG_UNBLOCK, &set, nullptr);
	raise(number);
	leave_copy(STATUS_FAILED);
}

static void wait_for(pid_t keeper)
{
	while (waitpid(keeper, nullptr, 0) < 0 && errno == EINTR) {
	}
}

// Returns when there could be no work, and says why. Who was below this process before it was ours is spared.
static int watch(pid_t keeper, trio_t &trio, const pids_t &others)
{
	for (;;) {
		pollfd polled[] = {{trio.verdict.reader.number, POLLIN, 0}, {trio.signals.number, POLLIN, 0}};
		poll(polled, 2, -1);
		if (polled[0].revents)
			break;
		if (const int number = ending_signal(trio)) {
			trio.life.writer.shut();
			wait_for(keeper);
			end_by(number);
		}
	}
	verdict_t verdict;
	const bool is_told =
		kernel_read(trio.verdict.reader.number, &verdict, sizeof verdict) == sizeof verdict;
	wait_for(keeper);
	if (!is_told) {
		ending_t how;
		how.spared = others;
		end_descendants(how);
		sweep_private_directories();
		complain("the process that does the work was ended");
		leave_copy(STATUS_FAILED);
	}
	if (verdict.error == 0 && WIFSIGNALED(verdict.status))
		end_by(WTERMSIG(verdict.status));
	if (verdict.error == 0)
		leave_copy(WEXITSTATUS(verdict.status));
	return verdict.error;
}

// ---- ----

// In the process between; returns in the one that works.
static void become_keeper(trio_t &trio)
{
	trio.life.writer.shut();
	trio.verdict.reader.shut();
	setsid();
	adopt_orphans();
	const pid_t work = fork();
	if (work > 0)
		keep(work, trio);
	if (work == 0)
		return;
	const verdict_t verdict = {errno, 0};
	leave_copy(kernel_write(trio.verdict.writer.number, &verdict, sizeof verdict) == sizeof verdict ? 0
	                                                                                                : 1);
}

void start_keeper()
{
	trio_t trio;
	if (!prepare(trio))
		fail(errno);
	const pids_t others = has_children() ? descendants() : pids_t();
	adopt_orphans();
	const pid_t keeper = fork();
	int error = keeper < 0 ? errno : 0;
	if (keeper > 0) {
		trio.life.reader.shut();
		trio.verdict.writer.shut();
		error = watch(keeper, trio, others);
	} else if (keeper == 0) {
		become_keeper(trio);
	}
	// What ends the run shall end the work, whatever our caller has blocked.
	sigset_t mask = trio.before;
	for (const int number : {SIGTERM, SIGINT, SIGHUP})
		sigdelset(&mask, number);
	sigprocmask(SIG_SETMASK, &mask, nullptr);
	if (error)
		fail(error);
}
