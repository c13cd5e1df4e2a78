// SPDX-License-Identifier: Apache-2.0
// Work that may hang, crash, or leave processes behind.
#include "worker.h"

#include "processes.h"
#include "silent_mount.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

task_t within(std::chrono::milliseconds limit)
{
	return {"the work", limit, {}, false};
}

void do_nothing(const worker_link_t &) {}

class Worker : public ProcessTest
{
protected:
	const numbers_t told;
};

// A process that does this with what it inherited, and ends with 0.
void expect_in_process(const std::function<void()> &work)
{
	EXPECT_EQ(wait_for(start([&] {
			  work();
			  leave_copy(testing::Test::HasFailure());
		  })),
	          0);
}

const work_t SIMPLE = [](const worker_link_t &to) { to.result("done"); };

// ---- results ----

class WorkerResult : public Worker, public testing::WithParamInterface<std::size_t>
{
};

TEST_P(WorkerResult, ComesWhole)
{
	std::vector<char> bytes(GetParam());
	std::iota(bytes.begin(), bytes.end(), '\1');
	const worked_t worked = run_in_worker(within(10s), [&](const worker_link_t &to) {
		to.stage("here");
		to.result(bytes.data(), bytes.size());
	});
	ASSERT_TRUE(worked.is_done) << worked.failure;
	EXPECT_FALSE(worked.is_timed_out);
	EXPECT_EQ(worked.failure, "");
	EXPECT_THAT(worked.left_behind, IsEmpty());
	ASSERT_EQ(worked.count, bytes.size());
	EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), worked.result()));
	EXPECT_EQ(reinterpret_cast<std::uintptr_t>(worked.result()) % 16, 0U);
}

INSTANTIATE_TEST_SUITE_P(OfEachLength, WorkerResult, testing::Values(0, 1, 15, 16, 17, 65536, 3 << 20));

TEST_F(Worker, SeesOurMemoryAndDoesNotChangeIt)
{
	int number = 1;
	const worked_t worked = run_in_worker(within(10s), [&](const worker_link_t &to) {
		to.result(std::to_string(number));
		number = 2;
	});
	EXPECT_EQ(worked.text(), "1");
	EXPECT_EQ(number, 1);
}

TEST_F(Worker, ResultCountsWhateverBecomesOfTheWorker)
{
	const worked_t worked = run_in_worker(within(10s), [](const worker_link_t &to) {
		to.result("all of it");
		raise(SIGKILL);
	});
	EXPECT_TRUE(worked.is_done);
	EXPECT_EQ(worked.text(), "all of it");
}

TEST_F(Worker, ResultOfThreeMegabytesThatIsCutIsNone)
{
	const std::string half(3 << 20, 'x');
	const worked_t worked = run_in_worker(within(10s), [&](const worker_link_t &to) {
		std::thread([] {
			usleep(20000);
			raise(SIGKILL);
			_exit(1);
		}).detach();
		// Nobody takes more than the pipe holds: this process is the only one that could.
		for (;;)
			to.stage(half);
	});
	EXPECT_FALSE(worked.is_done);
	EXPECT_THAT(worked.failure, StartsWith("the process for it was ended by signal 9 (Killed)"));
}

// ---- what can go wrong ----

TEST_F(Worker, FailureIsToldInItsWords)
{
	const worked_t worked =
		run_in_worker(within(10s), [](const worker_link_t &to) { to.failure("no such disk"); });
	EXPECT_FALSE(worked.is_done);
	EXPECT_FALSE(worked.is_timed_out);
	EXPECT_EQ(worked.failure, "no such disk");
}

TEST_F(Worker, FailureWithoutWordsIsOneAllTheSame)
{
	const worked_t worked = run_in_worker(within(10s), [](const worker_link_t &to) { to.failure(""); });
	EXPECT_FALSE(worked.is_done);
	EXPECT_EQ(worked.failure, "no cause is told");
}

TEST_F(Worker, ExceptionIsAFailure)
{
	const worked_t worked =
		run_in_worker(within(10s), [](const worker_link_t &) { throw std::runtime_error("thrown"); });
	EXPECT_EQ(worked.failure, "thrown");
}

TEST_F(Worker, NothingToldIsAFailure)
{
	const worked_t worked = run_in_worker(within(10s), do_nothing);
	EXPECT_FALSE(worked.is_done);
	EXPECT_EQ(worked.failure, "the process for it ended with status 0 at the work");
}

TEST_F(Worker, ExitIsNamed)
{
	const worked_t worked = run_in_worker(within(10s), [](const worker_link_t &to) {
		to.stage("the second half");
		_exit(3);
	});
	EXPECT_EQ(worked.failure, "the process for it ended with status 3 at the second half");
}

TEST_F(Worker, SignalsAreNamed)
{
	const auto ended_by = [](int number) {
		return run_in_worker({},
		                     [number](const worker_link_t &) {
					     const rlimit none = {0, 0};
					     setrlimit(RLIMIT_CORE, &none);
					     signal(number, SIG_DFL);
					     raise(number);
				     })
		        .failure;
	};
	EXPECT_EQ(ended_by(SIGSEGV), "the process for it was ended by signal 11 (Segmentation fault)");
	EXPECT_EQ(ended_by(SIGABRT), "the process for it was ended by signal 6 (Aborted)");
	EXPECT_EQ(ended_by(SIGKILL), "the process for it was ended by signal 9 (Killed)");
}

TEST_F(Worker, DirectoryIsWhereItWorks)
{
	const scratch_t scratch;
	const auto where = [](const worker_link_t &to) {
		char name[4096];
		to.result(std::string_view(getcwd(name, sizeof name)));
	};
	EXPECT_EQ(run_in_worker({"", 10s, scratch.path, false}, where).text(), scratch.path);
	EXPECT_EQ(run_in_worker({"", 10s, scratch.path + "/none", false}, where).failure,
	          scratch.path + "/none cannot be entered: No such file or directory");
}

// ---- the limit ----

TEST_F(Worker, LimitIsToldWithTheStage)
{
	const auto hang = [](const worker_link_t &to) {
		to.stage("container list");
		sleep_for_good();
	};
	worked_t worked;
	const auto time = time_of([&] { worked = run_in_worker(within(50ms), hang); });
	EXPECT_GE(time, 50ms);
	EXPECT_LT(time, 1000ms);
	EXPECT_FALSE(worked.is_done);
	EXPECT_TRUE(worked.is_timed_out);
	EXPECT_EQ(worked.failure, "timed out after 0.05 s at container list");
	EXPECT_THAT(worked.left_behind, IsEmpty());
	const auto without =
		run_in_worker({"", 50ms, {}, false}, [](const worker_link_t &) { sleep_for_good(); });
	EXPECT_EQ(without.failure, "timed out after 0.05 s");
}

TEST_F(Worker, LimitHoldsForOneThatTalksAllTheTime)
{
	const worked_t worked = run_in_worker(within(100ms), [](const worker_link_t &to) {
		for (;;)
			to.stage("talk");
	});
	EXPECT_EQ(worked.failure, "timed out after 0.1 s at talk");
}

TEST_F(Worker, LimitHoldsForOneThatNowAndThenSaysAByte)
{
	const worked_t worked = run_in_worker(within(150ms), [](const worker_link_t &) {
		for (;; usleep(20000))
			if (write(STDERR_FILENO, "", 1) < 0)
				return;
	});
	EXPECT_EQ(worked.failure, "timed out after 0.15 s at the work");
}

TEST_F(Worker, LimitHoldsForOneThatHasClosedAllDescriptors)
{
	const worked_t worked = run_in_worker(within(100ms), [](const worker_link_t &) {
		for (int i = 0; i < 1024; i++)
			close(i);
		sleep_for_good();
	});
	EXPECT_EQ(worked.failure, "timed out after 0.1 s at the work");
}

TEST_F(Worker, NoLimitIsNone)
{
	const worked_t worked = run_in_worker(within(0s), [](const worker_link_t &to) {
		usleep(30000);
		to.result("late");
	});
	EXPECT_EQ(worked.text(), "late");
}

TEST(WorkerText, Seconds)
{
	EXPECT_EQ(in_seconds(5s), "5 s");
	EXPECT_EQ(in_seconds(500ms), "0.5 s");
	EXPECT_EQ(in_seconds(86400s), "86400 s");
}

// ---- what it leaves ----

TEST_F(Worker, WhoIgnoresTermIsKilled)
{
	const auto time = time_of([] {
		const worked_t worked = run_in_worker(within(50ms), [](const worker_link_t &) {
			ignore_term();
			sleep_for_good();
		});
		EXPECT_TRUE(worked.is_timed_out);
		EXPECT_THAT(worked.left_behind, IsEmpty());
	});
	// A second for whoever ignores it, and the program's answer is there within three.
	EXPECT_GE(time, 1000ms);
	EXPECT_LT(time, 2500ms);
}

// Away from the worker as far as a process gets, with all that it was given.
void get_away(const numbers_t &told)
{
	wait_for(start([&] {
		setsid();
		told.tell(start([] { sleep_for_good(); }));
	}));
}

TEST_F(Worker, ChildThatHoldsThePipeKeepsNobodyWaiting)
{
	const auto time = time_of([&] {
		const worked_t worked = run_in_worker(within(0s), [&](const worker_link_t &to) {
			get_away(told);
			to.result("done");
		});
		EXPECT_EQ(worked.text(), "done");
		EXPECT_THAT(worked.left_behind, IsEmpty());
	});
	EXPECT_FALSE(is_there(told.hear()));
	EXPECT_LT(time, 900ms);
}

TEST_F(Worker, WhoGotAwayGoesAtTheLimit)
{
	const worked_t worked = run_in_worker(within(50ms), [&](const worker_link_t &) {
		get_away(told);
		sleep_for_good();
	});
	EXPECT_TRUE(worked.is_timed_out);
	EXPECT_FALSE(is_there(told.hear()));
}

TEST_F(Worker, StoppedOneIsAtTheLimit)
{
	const auto time = time_of([] {
		const worked_t worked =
			run_in_worker(within(50ms), [](const worker_link_t &) { raise(SIGSTOP); });
		EXPECT_TRUE(worked.is_timed_out);
	});
	EXPECT_LT(time, 900ms);
}

TEST_F(Worker, WhoWasThereBeforeIsSpared)
{
	const pid_t other = start([] { sleep_for_good(); });
	EXPECT_TRUE(
		run_in_worker(within(50ms), [](const worker_link_t &) { sleep_for_good(); }).is_timed_out);
	EXPECT_TRUE(run_in_worker(within(10s), [](const worker_link_t &to) { to.result(""); }).is_done);
	EXPECT_THAT(descendants(), ElementsAre(other));
	EXPECT_THAT(end_descendants(), IsEmpty());
}

TEST_F(Worker, DoesNotOutliveItsCaller)
{
	adopt_orphans();
	const pid_t caller = start([&] {
		run_in_worker(within(0s), [&](const worker_link_t &) {
			told.tell(getpid());
			sleep_for_good();
		});
	});
	const pid_t worker = told.hear();
	kill(caller, SIGKILL);
	wait_for(caller);
	int status = 0;
	EXPECT_TRUE(comes_true([&] { return waitpid(worker, &status, WNOHANG) == worker; }));
	EXPECT_EQ(status, SIGKILL);
}

TEST_F(Worker, HasNoDescriptorOfOursBesidesThoseOfItsCaller)
{
	// What it starts has none of the pipes.
	const worked_t worked = run_in_worker(within(10s), [](const worker_link_t &to) {
		to.result(std::to_string(system("exec 2>&1; for fd in 3 4 5 6 7 8 9; do "
		                                "[ -p /proc/self/fd/$fd ] && exit 1; done; exit 0")));
	});
	EXPECT_EQ(worked.text(), "0");
}

// What the kernel does not let go of is told, and not waited for by those behind it.
TEST_F(Worker, WhoCannotBeEndedIsLeftBehind)
{
	const scratch_t scratch;
	expect_in_process([&] {
		auto silent = std::make_unique<silent_mount_t>(scratch.path, questions_t::TAKEN);
		if (!silent->lack().empty()) {
			fprintf(stderr, "not tried: %s\n", silent->lack().c_str());
			return;
		}
		pid_t asker = 0;
		const auto time = time_of([&] {
			const worked_t worked = run_in_worker(within(100ms), [&](const worker_link_t &) {
				told.tell(getpid());
				struct statvfs status;
				statvfs(scratch.path.c_str(), &status);
			});
			EXPECT_EQ(worked.failure, "timed out after 0.1 s at the work");
			asker = told.hear();
			EXPECT_THAT(worked.left_behind, ElementsAre(asker));
		});
		EXPECT_LT(time, 2900ms);
		EXPECT_LT(time_of([] { EXPECT_TRUE(run_in_worker(within(10s), SIMPLE).is_done); }), 500ms);
		silent.reset();
		EXPECT_TRUE(WIFSIGNALED(wait_for(asker)));
	});
}

// One that is hung but can be ended is.
TEST_F(Worker, WhoWaitsForWhatNeverAnswersIsEnded)
{
	const scratch_t scratch;
	expect_in_process([&] {
		const silent_mount_t silent(scratch.path, questions_t::LEFT);
		if (!silent.lack().empty())
			return;
		const worked_t worked = run_in_worker(within(100ms), [&](const worker_link_t &) {
			struct statvfs status;
			statvfs(scratch.path.c_str(), &status);
		});
		EXPECT_TRUE(worked.is_timed_out);
		EXPECT_THAT(worked.left_behind, IsEmpty());
	});
}

// ---- standard streams ----

// What is said on our standard error meanwhile.
std::string said_during(const std::function<void()> &work)
{
	const scratch_t scratch;
	const std::string name = scratch.path + "/said";
	const int before = dup(STDERR_FILENO), file = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
	dup2(file, STDERR_FILENO);
	work();
	dup2(before, STDERR_FILENO);
	close(before);
	struct stat status;
	fstat(file, &status);
	std::string text(static_cast<std::size_t>(status.st_size), '\0');
	EXPECT_EQ(pread(file, text.data(), text.size(), 0), status.st_size);
	close(file);
	return text;
}

TEST_F(Worker, StandardStreams)
{
	const std::string said = said_during([] {
		const worked_t worked = run_in_worker(within(10s), [](const worker_link_t &to) {
			char byte;
			const bool is_empty = read(STDIN_FILENO, &byte, 1) == 0;
			const bool is_taken = write(STDOUT_FILENO, "out", 3) == 3;
			const bool is_said = write(STDERR_FILENO, "err", 3) == 3;
			to.result(is_empty && is_taken && is_said ? "all" : "not all");
		});
		EXPECT_EQ(worked.text(), "all");
	});
	EXPECT_EQ(said, "err");
}

TEST_F(Worker, InputIsOursWhereTheTaskReadsIt)
{
	const int before = dup(STDIN_FILENO);
	int ends[2];
	ASSERT_EQ(pipe(ends), 0);
	ASSERT_EQ(write(ends[1], "x", 1), 1);
	dup2(ends[0], STDIN_FILENO);
	const worked_t worked = run_in_worker({"", 10s, {}, true}, [](const worker_link_t &to) {
		char byte = '\0';
		to.result(&byte, read(STDIN_FILENO, &byte, 1) == 1 ? 1 : 0);
	});
	EXPECT_EQ(worked.text(), "x");
	dup2(before, STDIN_FILENO);
	close(before);
	close(ends[0]);
	close(ends[1]);
}

void say_much()
{
	const std::string much(1 << 20, 'x');
	for (int i = 0; i < 10; i++) {
		if (write(STDERR_FILENO, much.data(), much.size()) != 1 << 20)
			_exit(9);
	}
}

TEST_F(Worker, TenMegabytesOnStandardErrorPassThrough)
{
	const std::string said = said_during([] {
		const worked_t worked = run_in_worker(within(30s), [](const worker_link_t &to) {
			say_much();
			to.result("said");
		});
		EXPECT_EQ(worked.text(), "said");
	});
	EXPECT_EQ(said.size(), 10U << 20);
}

class WorkerReader : public Worker
{
protected:
	WorkerReader()
	{
		EXPECT_EQ(pipe2(ends_, O_CLOEXEC), 0);
		dup2(ends_[1], STDERR_FILENO);
		close(ends_[1]);
	}
	~WorkerReader() override
	{
		dup2(before_, STDERR_FILENO);
		close(before_);
		close(ends_[0]);
	}
	const int before_ = dup(STDERR_FILENO);
	int ends_[2];
};

TEST_F(WorkerReader, WhoSleepsIsNoReasonToWaitBeyondTheLimit)
{
	worked_t worked;
	const auto time = time_of([&] {
		worked = run_in_worker(within(50ms), [](const worker_link_t &) {
			say_much();
			sleep_for_good();
		});
	});
	EXPECT_LT(time, 900ms);
	EXPECT_TRUE(worked.is_timed_out);
}

TEST_F(WorkerReader, WhoTakesHisTimeTakesNoneOfTheWorks)
{
	std::size_t count = 0;
	std::thread reader([&] {
		usleep(1500000);
		char piece[4096];
		while (count < 10U << 20)
			count += static_cast<std::size_t>(
				std::max<ssize_t>(read(ends_[0], piece, sizeof piece), 0));
	});
	const worked_t worked = run_in_worker(within(1s), [](const worker_link_t &to) {
		say_much();
		to.result("said");
	});
	reader.join();
	EXPECT_EQ(worked.text(), "said");
	EXPECT_EQ(count, 10U << 20);
}

TEST_F(Worker, StandardErrorWithoutAReaderOrClosedIsNothingToUs)
{
	const int before = dup(STDERR_FILENO);
	int ends[2];
	ASSERT_EQ(pipe(ends), 0);
	close(ends[0]);
	dup2(ends[1], STDERR_FILENO);
	close(ends[1]);
	const work_t talk = [](const worker_link_t &to) {
		say_much();
		to.result("said");
	};
	EXPECT_EQ(run_in_worker(within(30s), talk).text(), "said");
	close(STDERR_FILENO);
	EXPECT_EQ(run_in_worker(within(30s), talk).text(), "said");
	dup2(before, STDERR_FILENO);
	close(before);
}

// ---- who calls it ----

TEST_F(Worker, CallerThatIgnoresTheEndOfItsChildren)
{
	expect_in_process([] {
		signal(SIGCHLD, SIG_IGN);
		EXPECT_EQ(run_in_worker(within(10s), SIMPLE).text(), "done");
		EXPECT_EQ(run_in_worker(within(10s), [](const worker_link_t &) { _exit(3); }).failure,
		          "the process for it ended with status 3 at the work");
		EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_IGN);
	});
}

TEST_F(Worker, CallerThatBlocksAndIgnoresSignals)
{
	expect_in_process([] {
		for (const int number : {SIGCHLD, SIGALRM, SIGTERM, SIGPIPE, SIGUSR1})
			signal(number, SIG_IGN);
		sigset_t all, behind;
		sigfillset(&all);
		sigprocmask(SIG_SETMASK, &all, nullptr);
		const worked_t worked = run_in_worker(within(10s), [](const worker_link_t &to) {
			sigset_t mask, none;
			sigprocmask(SIG_SETMASK, nullptr, &mask);
			sigemptyset(&none);
			const bool is_default = signal(SIGALRM, SIG_DFL) == SIG_DFL &&
			                        signal(SIGTERM, SIG_DFL) == SIG_DFL &&
			                        signal(SIGUSR1, SIG_DFL) == SIG_DFL;
			to.result(is_default && !sigismember(&mask, SIGUSR1) && !sigismember(&mask, SIGTERM)
			                  ? "clean"
			                  : "not clean");
		});
		EXPECT_EQ(worked.text(), "clean");
		EXPECT_TRUE(run_in_worker(within(50ms), [](const worker_link_t &) {
				    sleep_for_good();
			    }).is_timed_out);
		sigprocmask(SIG_SETMASK, nullptr, &behind);
		EXPECT_TRUE(sigismember(&behind, SIGCHLD) && sigismember(&behind, SIGTERM));
	});
}

TEST_F(Worker, CallerWithoutStandardStreams)
{
	expect_in_process([] {
		for (int i = 0; i < 3; i++)
			close(i);
		const worked_t worked = run_in_worker(within(10s), [](const worker_link_t &to) {
			to.result(std::to_string(system("exit 4")));
		});
		leave_copy(worked.text() == "1024" ? 0 : 1);
	});
}

TEST_F(Worker, NoDescriptors)
{
	expect_in_process([] {
		rlimit few = {4, 4};
		setrlimit(RLIMIT_NOFILE, &few);
		EXPECT_EQ(run_in_worker(within(10s), SIMPLE).failure,
		          "no process can be started for it: Too many open files");
	});
}

// Whatever is the least that it needs: what is started is ended.
TEST_F(Worker, FewDescriptorsAreEnoughToEndIt)
{
	int started = 0;
	for (rlim_t number = 4; number < 12; number++) {
		expect_in_process([&] {
			for (int i = 3; i < 100; i++)
				close(i);
			rlimit few = {number, number};
			setrlimit(RLIMIT_NOFILE, &few);
			const worked_t worked = run_in_worker(within(50ms), [](const worker_link_t &) {
				start([] { sleep_for_good(); });
				sleep_for_good();
			});
			EXPECT_THAT(worked.left_behind, IsEmpty());
			EXPECT_FALSE(has_children());
			leave_copy(testing::Test::HasFailure());
		});
		started++;
	}
	EXPECT_EQ(started, 8);
}

TEST_F(Worker, NoProcesses)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "a limit of a user's own takes root";
	expect_in_process([] {
		constexpr uid_t NOBODY = 61234;
		const rlimit none = {0, 0};
		setrlimit(RLIMIT_NPROC, &none);
		ASSERT_EQ(setuid(NOBODY), 0);
		EXPECT_EQ(run_in_worker(within(10s), SIMPLE).failure,
		          "no process can be started for it: Resource temporarily unavailable");
	});
}

} // namespace
