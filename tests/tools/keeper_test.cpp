// SPDX-License-Identifier: Apache-2.0
// A run in three processes: whoever is ended when, nothing is left.
#include "keeper.h"

#include "private_directory.h"
#include "processes.h"
#include "program.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

const char PROGRAM_NAME[] = "tools_tests";

namespace
{

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

std::string name_of(pid_t pid)
{
	std::string name;
	std::getline(std::ifstream("/proc/" + std::to_string(pid) + "/comm"), name);
	return name;
}

class Keeper : public ProcessTest
{
protected:
	void SetUp() override
	{
		// Whoever gets away from the run is found here.
		adopt_orphans();
		ProcessTest::SetUp();
	}

	// A run that does this; its keeper and its work are known.
	pid_t start_run(const std::function<void()> &work)
	{
		run_ = start([&] {
			start_keeper();
			told.tell(getppid());
			told.tell(getpid());
			work();
		});
		keeper_ = told.hear();
		work_ = told.hear();
		return run_;
	}

	// With its tool, which has got away as far as a process can.
	void start_hanging_run(bool ignores_term = false)
	{
		start_run([&, ignores_term] {
			const private_directory_t directory;
			wait_for(start([&] {
				setsid();
				start([&] {
					if (ignores_term)
						ignore_term();
					if (chdir(directory.path().c_str()) != 0)
						leave_copy(1);
					told.tell(getpid());
					execlp("sleep", "sleep", "1000", nullptr);
				});
			}));
			sleep_for_good();
		});
		tool_ = told.hear();
		// Then it has nothing of ours any more.
		ASSERT_TRUE(comes_true([&] { return name_of(tool_) == "sleep"; }));
	}

	void expect_nothing_left()
	{
		// Those who have nobody else come to us, and may be ended, but not more.
		EXPECT_TRUE(comes_true([] { return descendants().empty(); })) << descendants().size();
		while (waitpid(-1, nullptr, WNOHANG) > 0) {
		}
		EXPECT_TRUE(comes_true([&] { return fs::is_empty(parent.path); }));
	}

	const scratch_t parent;
	const variable_t tmpdir{"TMPDIR", parent.path};
	const numbers_t told;
	pid_t run_ = 0, keeper_ = 0, work_ = 0, tool_ = 0;
};

TEST_F(Keeper, StatusIsThatOfTheWork)
{
	for (const int status : {0, 1, 2, 255}) {
		start_run([&] { leave_copy(status); });
		const int ended = wait_for(run_);
		EXPECT_TRUE(WIFEXITED(ended));
		EXPECT_EQ(WEXITSTATUS(ended), status);
		EXPECT_FALSE(has_children());
	}
}

TEST_F(Keeper, EndBySignalIsThatOfTheWork)
{
	for (const int number : {SIGKILL, SIGABRT, SIGSEGV, SIGPIPE}) {
		start_run([&] {
			prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
			signal(number, SIG_DFL);
			raise(number);
		});
		EXPECT_EQ(wait_for(run_), number);
		expect_nothing_left();
	}
}

TEST_F(Keeper, RunThatEndsIsSoon)
{
	const auto time = time_of([&] {
		start_run([] {});
		wait_for(run_);
	});
	EXPECT_LT(time, 500ms);
}

TEST_F(Keeper, WorkIsInASessionOfItsOwn)
{
	start_run([&] { told.tell(getsid(0)); });
	EXPECT_EQ(told.hear(), keeper_);
	wait_for(run_);
}

class KeeperSignal : public Keeper, public testing::WithParamInterface<int>
{
};

TEST_P(KeeperSignal, OfTheRunEndsItAndLeavesNothing)
{
	start_hanging_run(GetParam() == SIGTERM);
	kill(run_, GetParam());
	EXPECT_EQ(wait_for(run_), GetParam());
	// The started process ends as the last one, where it ends by itself.
	EXPECT_FALSE(GetParam() != SIGKILL && has_children());
	expect_nothing_left();
}

TEST_P(KeeperSignal, OfTheKeeperEndsTheRunAndLeavesNothing)
{
	start_hanging_run(GetParam() == SIGTERM);
	kill(keeper_, GetParam());
	const int ended = wait_for(run_);
	EXPECT_TRUE(WIFEXITED(ended));
	EXPECT_EQ(WEXITSTATUS(ended), STATUS_FAILED);
	expect_nothing_left();
}

TEST_P(KeeperSignal, OfTheWorkEndsTheRunAndLeavesNothing)
{
	start_hanging_run(GetParam() == SIGTERM);
	kill(work_, GetParam());
	EXPECT_EQ(wait_for(run_), GetParam());
	expect_nothing_left();
}

INSTANTIATE_TEST_SUITE_P(Each, KeeperSignal, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGKILL));

TEST_F(Keeper, NextRunSweepsWhatAKillOfAllLeaves)
{
	start_hanging_run();
	for (const pid_t pid : {run_, keeper_, work_})
		kill(pid, SIGSTOP);
	for (const pid_t pid : {run_, keeper_, work_})
		kill(pid, SIGKILL);
	wait_for(run_);
	EXPECT_TRUE(comes_true([&] { return descendants() == pids_t{tool_}; }));
	EXPECT_FALSE(fs::is_empty(parent.path));
	// However short it is.
	start_run([] {});
	EXPECT_EQ(wait_for(run_), 0);
	expect_nothing_left();
}

TEST_F(Keeper, WorkThatExitsLeavesNoFile)
{
	start_run([] {
		const private_directory_t directory;
		std::ofstream(directory.path() + "/file") << "text";
		leave_copy(3);
	});
	EXPECT_EQ(WEXITSTATUS(wait_for(run_)), 3);
	expect_nothing_left();
}

TEST_F(Keeper, IgnoredSignalsEndNothing)
{
	const auto before = signal(SIGHUP, SIG_IGN);
	start_run([] { usleep(100000); });
	signal(SIGHUP, before);
	kill(run_, SIGHUP);
	kill(keeper_, SIGHUP);
	kill(work_, SIGHUP);
	EXPECT_EQ(wait_for(run_), 0);
}

TEST_F(Keeper, BlockedSignalsEndTheRunAllTheSame)
{
	sigset_t all, before;
	sigfillset(&all);
	sigprocmask(SIG_SETMASK, &all, &before);
	start_hanging_run();
	sigprocmask(SIG_SETMASK, &before, nullptr);
	kill(run_, SIGTERM);
	EXPECT_EQ(wait_for(run_), SIGTERM);
	expect_nothing_left();
}

TEST_F(Keeper, EndOfChildrenIsHeardThoughTheCallerIgnoresIt)
{
	run_ = start([] {
		signal(SIGCHLD, SIG_IGN);
		start_keeper();
		leave_copy(WEXITSTATUS(system("exit 5")));
	});
	EXPECT_EQ(WEXITSTATUS(wait_for(run_)), 5);
}

// As of a shell that started something and then became the run.
TEST_F(Keeper, WhoWasThereBeforeIsSpared)
{
	run_ = start([&] {
		start([&] {
			told.tell(getpid());
			sleep_for_good();
		});
		start_keeper();
		told.tell(getppid());
		sleep_for_good();
	});
	const int one = told.hear(), two = told.hear();
	// Which of them spoke first is not told.
	ASSERT_TRUE(comes_true([&] { return is_there(one) && is_there(two); }));
	const pid_t keeper = getsid(one) == one ? one : two, other = keeper == one ? two : one;
	kill(keeper, SIGKILL);
	EXPECT_EQ(WEXITSTATUS(wait_for(run_)), STATUS_FAILED);
	EXPECT_TRUE(comes_true([&] { return descendants() == pids_t{other}; }));
	EXPECT_THAT(end_descendants(), IsEmpty());
}

TEST_F(Keeper, ReaderOfTheOutputHearsItsEndWithTheRun)
{
	int ends[2];
	ASSERT_EQ(pipe(ends), 0);
	run_ = start([&] {
		dup2(ends[1], STDOUT_FILENO);
		start_keeper();
		if (write(STDOUT_FILENO, "x", 1) != 1)
			leave_copy(1);
	});
	close(ends[1]);
	char bytes[2];
	EXPECT_EQ(read(ends[0], bytes, sizeof bytes), 1);
	EXPECT_EQ(read(ends[0], bytes, sizeof bytes), 0);
	EXPECT_EQ(wait_for(run_), 0);
	close(ends[0]);
}

// What start_keeper() throws in a process with so much of this, or none.
int error_of_start(__rlimit_resource of, rlim_t number, uid_t user = geteuid())
{
	rlimit before;
	getrlimit(of, &before);
	const rlimit few = {number, before.rlim_max};
	setrlimit(of, &few);
	if (setresuid(user, user, user) != 0)
		return -1;
	try {
		start_keeper();
	} catch (const std::system_error &error) {
		sigset_t mask;
		sigprocmask(SIG_SETMASK, nullptr, &mask);
		return sigismember(&mask, SIGTERM) ? -1 : error.code().value();
	}
	return 0;
}

TEST_F(Keeper, NoDescriptors)
{
#ifdef __SANITIZE_ADDRESS__
	GTEST_SKIP() << "the sanitizer needs descriptors for what is thrown";
#endif
	bool was_enough = false;
	for (rlim_t number = 3; number < 10; number++) {
		const int status = wait_for(start([number] {
			for (int i = 3; i < 100; i++)
				close(i);
			leave_copy(error_of_start(RLIMIT_NOFILE, number));
		}));
		const int error = WEXITSTATUS(status);
		EXPECT_TRUE(error == 0 || error == EMFILE) << number << ": " << status;
		was_enough |= error == 0;
		EXPECT_FALSE(has_children());
	}
	EXPECT_TRUE(was_enough);
}

// The first process, and the one between, may be one too many each.
TEST_F(Keeper, NoProcesses)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "a limit of a user's own takes root";
	constexpr uid_t NOBODY = 61235;
	for (const rlim_t number : {1U, 2U, 3U}) {
		const int status = wait_for(
			start([number] { leave_copy(error_of_start(RLIMIT_NPROC, number, NOBODY)); }));
		EXPECT_EQ(WEXITSTATUS(status), number < 3 ? EAGAIN : 0) << number;
		EXPECT_FALSE(has_children());
	}
}

} // namespace
