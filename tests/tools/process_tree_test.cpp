// SPDX-License-Identifier: Apache-2.0
// Processes that somebody started for us: who they are, and that they go.
#include "process_table.h"
#include "processes.h"

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

const ending_t QUICK = {100ms, 1000ms, {}, 0};

// Where a handler of signals tells that it was called.
const numbers_t *heard_of;

class ProcessTree : public ProcessTest
{
protected:
	void SetUp() override
	{
		adopt_orphans();
		ProcessTest::SetUp();
	}
	const numbers_t told;
};

TEST_F(ProcessTree, DescendantsAreThoseAtAnyDepth)
{
	const pid_t child = start([&] {
		told.tell(start([] { sleep_for_good(); }));
		prctl(PR_SET_NAME, "a) Z 1 (b");
		told.tell(0);
		sleep_for_good();
	});
	const pid_t grandchild = told.hear();
	told.hear();
	EXPECT_THAT(descendants(), UnorderedElementsAre(child, grandchild));
	EXPECT_THAT(end_descendants(), IsEmpty());
	EXPECT_THAT(descendants(), IsEmpty());
	EXPECT_FALSE(is_there(child) || is_there(grandchild));
}

TEST_F(ProcessTree, EndedOnesAreNoDescendantsButChildren)
{
	const pid_t child = start([] {});
	siginfo_t info;
	waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
	EXPECT_THAT(descendants(), IsEmpty());
	EXPECT_TRUE(has_children());
	EXPECT_THAT(end_descendants(), IsEmpty());
	EXPECT_FALSE(has_children());
}

TEST_F(ProcessTree, HasChildrenWhileTheyRun)
{
	EXPECT_FALSE(has_children());
	const pid_t child = start([] { sleep_for_good(); });
	EXPECT_TRUE(has_children());
	kill(child, SIGKILL);
	wait_for(child);
	EXPECT_FALSE(has_children());
}

TEST_F(ProcessTree, WhoStartsASessionAndLosesItsParentStaysBelow)
{
	const pid_t child = start([&] {
		start([&] {
			setsid();
			start([&] {
				told.tell(getpid());
				sleep_for_good();
			});
		});
	});
	const pid_t orphan = told.hear();
	wait_for(child);
	ASSERT_TRUE(comes_true([&] { return descendants() == pids_t{orphan}; }));
	EXPECT_THAT(end_descendants(), IsEmpty());
	EXPECT_FALSE(is_there(orphan));
}

TEST_F(ProcessTree, OneThatEndedInItsFirstThreadAloneIsThere)
{
	const pid_t child = start([&] {
		std::thread([&] {
			told.tell(0);
			sleep_for_good();
		}).detach();
		syscall(SYS_exit, 0);
	});
	told.hear();
	ASSERT_TRUE(comes_true([&] { return descendants() == pids_t{child}; }));
	EXPECT_THAT(end_descendants(), IsEmpty());
	EXPECT_FALSE(is_there(child));
}

void tell_and_end(int number)
{
	heard_of->tell(number);
	_exit(0);
}

TEST_F(ProcessTree, TermComesFirst)
{
	heard_of = &told;
	start([&] {
		signal(SIGTERM, tell_and_end);
		told.tell(0);
		sleep_for_good();
	});
	told.hear();
	EXPECT_LT(time_of([] { EXPECT_THAT(end_descendants(), IsEmpty()); }), 900ms);
	EXPECT_EQ(told.hear(), SIGTERM);
}

TEST_F(ProcessTree, WhoIgnoresTermIsKilledAfterTheGrace)
{
	const pid_t child = start([&] {
		ignore_term();
		told.tell(0);
		sleep_for_good();
	});
	told.hear();
	const auto time = time_of([] { EXPECT_THAT(end_descendants(QUICK), IsEmpty()); });
	EXPECT_GE(time, 100ms);
	EXPECT_LT(time, 1000ms);
	EXPECT_FALSE(is_there(child));
}

TEST_F(ProcessTree, StoppedOnesHearIt)
{
	heard_of = &told;
	const pid_t child = start([&] {
		signal(SIGTERM, tell_and_end);
		told.tell(0);
		sleep_for_good();
	});
	told.hear();
	int status = 0;
	kill(child, SIGSTOP);
	waitpid(child, &status, WUNTRACED);
	ASSERT_TRUE(WIFSTOPPED(status));
	EXPECT_LT(time_of([] { EXPECT_THAT(end_descendants(), IsEmpty()); }), 900ms);
	EXPECT_EQ(told.hear(), SIGTERM);
}

TEST_F(ProcessTree, WhoIsStartedDuringTheGraceGoesToo)
{
	start([&] {
		signal(SIGTERM, [](int) {
			// And again, as often as it is told.
			if (fork() == 0)
				sleep_for_good();
		});
		told.tell(0);
		sleep_for_good();
	});
	told.hear();
	EXPECT_THAT(end_descendants(QUICK), IsEmpty());
	EXPECT_THAT(descendants(), IsEmpty());
}

// Each is gone before anybody can have looked at it for long.
void run_away()
{
	for (int i = 0; i < 20000; i++) {
		if (fork() != 0)
			_exit(0);
		usleep(200);
	}
}

TEST_F(ProcessTree, WhoRunsAwayFromItselfIsCaught)
{
	start([&] {
		ignore_term();
		told.tell(0);
		run_away();
	});
	told.hear();
	EXPECT_THAT(end_descendants(QUICK), IsEmpty());
	EXPECT_FALSE(has_children());
}

TEST_F(ProcessTree, SparedOnesStayWithAllBelowThem)
{
	const pid_t spared = start([&] {
		told.tell(start([] { sleep_for_good(); }));
		sleep_for_good();
	});
	const pid_t below = told.hear();
	const pid_t other = start([] { sleep_for_good(); });
	ending_t how = QUICK;
	how.spared = {spared};
	EXPECT_LT(time_of([&] { EXPECT_THAT(end_descendants(how), IsEmpty()); }), 100ms);
	EXPECT_THAT(descendants(), UnorderedElementsAre(spared, below));
	EXPECT_FALSE(is_there(other));
	EXPECT_THAT(end_descendants(), IsEmpty());
}

TEST_F(ProcessTree, NobodyElseIsTouched)
{
	const pid_t parent = getpid();
	const pid_t child = start([&] {
		EXPECT_THAT(end_descendants(QUICK), IsEmpty());
		EXPECT_TRUE(is_there(parent));
		leave_copy(testing::Test::HasFailure());
	});
	EXPECT_EQ(wait_for(child), 0);
}

// Whoever has a number of one that is gone is somebody else.
TEST_F(ProcessTree, NumberAloneIsNobody)
{
	const pid_t child = start([] { sleep_for_good(); });
	process_t other = read_process(child);
	EXPECT_EQ(other.parent, getpid());
	EXPECT_FALSE(other.is_ended || other.has_terminal);
	other.start++;
	EXPECT_FALSE(send_signal(other, SIGKILL));
	EXPECT_TRUE(send_signal(read_process(child), SIGKILL));
	EXPECT_EQ(wait_for(child), SIGKILL);
	const process_t gone = read_process(child);
	EXPECT_TRUE(gone.is_ended);
	EXPECT_EQ(gone.parent, 0);
	EXPECT_FALSE(send_signal(gone, SIGKILL));
}

// Where /proc tells of nobody, as in a changed root, the group is all that is known.
TEST_F(ProcessTree, WithoutTheTableOfProcessesTheGroupGoes)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "changing the root takes root";
	const scratch_t root;
	const pid_t process = start([&] {
		if (chroot(root.path.c_str()) != 0)
			leave_copy(3);
		adopt_orphans();
		const pid_t group = start([&] {
			setpgid(0, 0);
			ignore_term();
			start([] { sleep_for_good(); });
			told.tell(0);
			sleep_for_good();
		});
		told.hear();
		ending_t how = QUICK;
		how.group = group;
		leave_copy(end_descendants(how).empty() && !has_children() ? 0 : 1);
	});
	EXPECT_EQ(wait_for(process), 0);
}

// Numbers of another space: who has them here are others.
TEST_F(ProcessTree, TheTableOfAnotherSpaceOfNumbersIsNone)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "a space of numbers takes root";
	const pid_t process = start([&] {
		if (unshare(CLONE_NEWPID) != 0)
			leave_copy(0);
		const pid_t first = start([] {
			start([] { sleep_for_good(); });
			leave_copy(descendants().empty() ? 0 : 1);
		});
		leave_copy(WEXITSTATUS(wait_for(first)));
	});
	EXPECT_EQ(wait_for(process), 0);
}

TEST_F(ProcessTree, ProcessesInADirectoryAreThoseThatWorkThere)
{
	const scratch_t scratch;
	const std::string here = scratch.path + "/here", below = here + "/below",
			  beside = scratch.path + "/here 2";
	for (const std::string &path : {here, below, beside})
		mkdir(path.c_str(), 0700);
	const auto start_in = [&](const std::string &directory) {
		const pid_t pid = start([&] {
			if (chdir(directory.c_str()) != 0)
				leave_copy(1);
			told.tell(0);
			sleep_for_good();
		});
		told.hear();
		return pid;
	};
	const pid_t one = start_in(here), two = start_in(below), three = start_in(beside);
	EXPECT_THAT(processes_in(here), UnorderedElementsAre(one, two));
	EXPECT_THAT(processes_in(beside), ElementsAre(three));
	// Also when it is gone.
	rmdir(below.c_str());
	EXPECT_THAT(processes_in(here), UnorderedElementsAre(one, two));
	rmdir(here.c_str());
	EXPECT_THAT(processes_in(here), Contains(one));
	EXPECT_THAT(processes_in(scratch.path + "/her"), IsEmpty());
	EXPECT_THAT(end_processes_in(beside), IsEmpty());
	EXPECT_THAT(descendants(), UnorderedElementsAre(one, two));
	EXPECT_THAT(end_descendants(), IsEmpty());
}

TEST_F(ProcessTree, WhoWorksThereWithATerminalIsNotOurs)
{
	const scratch_t scratch;
	const int pair = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
	ASSERT_GE(pair, 0);
	grantpt(pair);
	unlockpt(pair);
	const pid_t looker = start([&] {
		setsid();
		// The first terminal of a session is its own.
		if (open(ptsname(pair), O_RDWR) < 0 || chdir(scratch.path.c_str()) != 0)
			leave_copy(1);
		told.tell(0);
		sleep_for_good();
	});
	told.hear();
	EXPECT_THAT(processes_in(scratch.path), Not(Contains(looker)));
	EXPECT_THAT(end_descendants(), IsEmpty());
	close(pair);
}

TEST_F(ProcessTree, OursIsNeverAmongThem)
{
	char here[4096];
	ASSERT_TRUE(getcwd(here, sizeof here));
	EXPECT_THAT(processes_in(here), Not(Contains(getpid())));
}

} // namespace
