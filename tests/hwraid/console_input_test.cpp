// SPDX-License-Identifier: Apache-2.0
// The parts of the console that no session reaches: what no menu shows, limits that leave no number.
#include "hwraid/aac_mycli/aac_mycli.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

template <class Function> std::string printed(Function run)
{
	testing::internal::CaptureStderr();
	run();
	return testing::internal::GetCapturedStderr();
}

TEST(Console, MainMenuLine)
{
	EXPECT_EQ(printed(printf_info), "1 - Controller  2 - Disk  3 - Container  4 - Raid  5 - task  6 "
	                                "Server Management Interface -- "
	                                "GetIntemInfo 0 - Quit\n");
}

TEST(Console, BoxedMenu)
{
	EXPECT_EQ(printed(print_controller), "------------------------------\n"
	                                     "|  1 ---- get controller list|\n"
	                                     "|  2 ---- get controller name|\n"
	                                     "|  0 ---- Quit controller!   |\n"
	                                     "------------------------------\n");
}

TEST(Console, LimitsThatLeaveNoNumberAskNobody)
{
	EXPECT_EQ(printed([] { EXPECT_EQ(InputProcess(0, -1, "Prompt", "Again"), -1); }), "");
	EXPECT_EQ(printed([] { EXPECT_EQ(InputProcess(5, 4, "Prompt", "Again"), -1); }), "");
}

// Standard input is a pipe while it lives.
class PipedInput
{
public:
	PipedInput() : kept_(dup(STDIN_FILENO))
	{
		EXPECT_EQ(pipe(ends_), 0);
		dup2(ends_[0], STDIN_FILENO);
		close(ends_[0]);
		StartInput();
	}
	~PipedInput()
	{
		dup2(kept_, STDIN_FILENO);
		close(kept_);
		StartInput();
	}
	PipedInput(const PipedInput &) = delete;
	PipedInput &operator=(const PipedInput &) = delete;

	void type(const std::string &text) const
	{
		EXPECT_EQ(write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
	}
	void end() const { close(ends_[1]); }

private:
	int kept_;
	int ends_[2] = {-1, -1};
};

TEST(Console, AnEndStaysOne)
{
	const PipedInput input;
	char line[16] = "unchanged";
	input.type("one\ntw");
	input.end();
	EXPECT_TRUE(ReadLine(line, sizeof line));
	EXPECT_STREQ(line, "one");
	EXPECT_FALSE(InputEnded());
	for (int i = 0; i < 2; i++) {
		EXPECT_FALSE(ReadLine(line, sizeof line));
		EXPECT_STREQ(line, "");
		EXPECT_TRUE(InputEnded());
	}
}

void ignore_alarm(int) {}

// A host may handle signals, and not all ask for interrupted calls to be started again.
TEST(Console, SignalsOfTheHostAreNoEnd)
{
	const PipedInput input;
	struct sigaction handler = {};
	struct sigaction before;
	handler.sa_handler = ignore_alarm;
	ASSERT_EQ(sigaction(SIGALRM, &handler, &before), 0);
	const itimerval often = {{0, 10000}, {0, 10000}};
	const itimerval never = {};

	const pid_t typist = fork();
	ASSERT_GE(typist, 0);
	if (typist == 0) {
		usleep(100000);
		input.type("late\n");
		_exit(0);
	}
	ASSERT_EQ(setitimer(ITIMER_REAL, &often, nullptr), 0);
	char line[16];
	EXPECT_TRUE(ReadLine(line, sizeof line));
	EXPECT_STREQ(line, "late");
	ASSERT_EQ(setitimer(ITIMER_REAL, &never, nullptr), 0);
	EXPECT_EQ(waitpid(typist, nullptr, 0), typist);
	input.end();
	signal(SIGALRM, SIG_IGN); // the last one may still be on its way
	EXPECT_EQ(sigaction(SIGALRM, &before, nullptr), 0);
}

} // namespace
