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
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

// Records of runs that leave by _exit, where the build makes any.
extern "C" void __gcov_dump() __attribute__((weak));

[[noreturn]] static void leave(int status)
{
	if (__gcov_dump)
		__gcov_dump();
	_exit(status);
}

static int checked(int result, const char *what)
{
	if (result < 0)
		throw std::system_error(errno, std::generic_category(), what);
	return result;
}

namespace
{
struct channel_t {
	int reader = -1;
	int writer = -1;
};
} // namespace

static channel_t make_channel()
{
	int ends[2];
	checked(pipe2(ends, O_CLOEXEC), "no pipe can be made");
	return {ends[0], ends[1]};
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

// ---- the keeper ----

static void close_standard_descriptors()
{
	const int null = kernel_open("/dev/null", O_RDWR);
	for (int descriptor = 0; descriptor <= 2; descriptor++) {
		if (null < 0 || dup2(null, descriptor) < 0)
			close(descriptor);
	}
}

static void end_what_is_left(bool is_clean)
{
	if (!is_clean || has_children())
		end_descendants();
	if (!is_clean)
		sweep_private_directories();
}

// How the work ended, where it has.
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

[[noreturn]] static void keep(pid_t work, int life, int verdict, const sigset_t &ending)
{
	sigset_t heard = ending;
	sigaddset(&heard, SIGCHLD);
	const int signals = signalfd(-1, &heard, SFD_CLOEXEC | SFD_NONBLOCK);
	close_standard_descriptors();
	sweep_private_directories();
	for (;;) {
		pollfd polled[] = {{life, POLLIN, 0}, {signals, POLLIN, 0}};
		int status;
		if (has_ended(work, status)) {
			end_what_is_left(WIFEXITED(status));
			leave(kernel_write(verdict, &status, sizeof status) == sizeof status ? 0 : 1);
		}
		poll(polled, 2, -1);
		signalfd_siginfo told;
		bool is_to_end = polled[0].revents != 0;
		while (kernel_read(signals, &told, sizeof told) == sizeof told)
			is_to_end |= told.ssi_signo != SIGCHLD;
		if (is_to_end) {
			end_what_is_left(false);
			leave(1);
		}
	}
}

// ---- the process that was started ----

[[noreturn]] static void end_as(int status)
{
	if (WIFSIGNALED(status)) {
		const int number = WTERMSIG(status);
		sigset_t set;
		sigemptyset(&set);
		sigaddset(&set, number);
		signal(number, SIG_DFL);
		sigprocmask(SIG_UNBLOCK, &set, nullptr);
		raise(number);
	}
	leave(WIFEXITED(status) ? WEXITSTATUS(status) : STATUS_FAILED);
}

static void wait_for(pid_t keeper)
{
	while (waitpid(keeper, nullptr, 0) < 0 && errno == EINTR) {
	}
}

[[noreturn]] static void watch(pid_t keeper, int life, int verdict, const sigset_t &ending)
{
	const int signals = signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
	for (;;) {
		pollfd polled[] = {{verdict, POLLIN, 0}, {signals, POLLIN, 0}};
		poll(polled, 2, -1);
		int status;
		if (polled[0].revents) {
			const bool is_told = kernel_read(verdict, &status, sizeof status) == sizeof status;
			wait_for(keeper);
			if (is_told)
				end_as(status);
			end_descendants();
			sweep_private_directories();
			complain("the process that does the work was ended");
			leave(STATUS_FAILED);
		}
		signalfd_siginfo told;
		if (kernel_read(signals, &told, sizeof told) == sizeof told) {
			close(life);
			wait_for(keeper);
			end_as(static_cast<int>(told.ssi_signo));
		}
	}
}

// ---- ----

void start_keeper()
{
	const channel_t life = make_channel(), verdict = make_channel();
	const sigset_t ending = ending_signals();
	sigset_t blocked = ending, before;
	sigaddset(&blocked, SIGCHLD);
	sigprocmask(SIG_BLOCK, &blocked, &before);
	// Ignored, it would keep us from hearing how anybody ended.
	signal(SIGCHLD, SIG_DFL);
	adopt_orphans();
	const pid_t keeper = checked(fork(), "no process can be started");
	if (keeper > 0) {
		close(life.reader);
		close(verdict.writer);
		watch(keeper, life.writer, verdict.reader, ending);
	}
	close(life.writer);
	close(verdict.reader);
	setsid();
	adopt_orphans();
	const pid_t work = fork();
	if (work < 0)
		leave(STATUS_FAILED);
	if (work > 0)
		keep(work, life.reader, verdict.writer, ending);
	close(life.reader);
	close(verdict.writer);
	sigprocmask(SIG_SETMASK, &before, nullptr);
}
