// SPDX-License-Identifier: Apache-2.0
// What the tests of our own processes share.
#include "processes.h"

#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;
using clock_type = std::chrono::steady_clock;

static std::size_t open_descriptors()
{
	std::size_t count = 0;
	DIR *const folder = opendir("/proc/self/fd");
	while (readdir(folder))
		count++;
	closedir(folder);
	return count;
}

void ProcessTest::SetUp()
{
	ASSERT_THAT(descendants(), testing::IsEmpty());
	descriptors_ = open_descriptors();
}

void ProcessTest::TearDown()
{
	EXPECT_FALSE(has_children());
	end_descendants();
	EXPECT_EQ(open_descriptors(), descriptors_);
}

static std::string new_directory()
{
	std::string path = fs::canonical(testing::TempDir()).string() + "/processes.XXXXXX";
	if (!mkdtemp(path.data()))
		abort();
	return path;
}

scratch_t::scratch_t() : path(new_directory()) {}

scratch_t::~scratch_t()
{
	fs::remove_all(path);
}

variable_t::variable_t(const char *name, const std::string &value)
    : name_(name), was_there_(getenv(name)), before_(was_there_ ? getenv(name) : "")
{
	setenv(name, value.c_str(), 1);
}

variable_t::~variable_t()
{
	if (was_there_)
		setenv(name_, before_.c_str(), 1);
	else
		unsetenv(name_);
}

pid_t start(const std::function<void()> &work)
{
	const pid_t child = fork();
	if (child == 0) {
		work();
		leave_copy(0);
	}
	return child;
}

int wait_for(pid_t child)
{
	int status = -1;
	waitpid(child, &status, 0);
	return status;
}

void sleep_for_good()
{
	for (;;)
		pause();
}

void ignore_term()
{
	signal(SIGTERM, SIG_IGN);
}

numbers_t::numbers_t()
{
	if (pipe2(ends_, O_CLOEXEC) != 0)
		abort();
}

numbers_t::~numbers_t()
{
	close(ends_[0]);
	close(ends_[1]);
}

void numbers_t::tell(int number) const
{
	if (write(ends_[1], &number, sizeof number) != sizeof number)
		abort();
}

int numbers_t::hear() const
{
	int number;
	return read(ends_[0], &number, sizeof number) == sizeof number ? number : -1;
}

bool is_there(pid_t pid)
{
	return kill(pid, 0) == 0;
}

bool comes_true(const std::function<bool()> &condition, std::chrono::milliseconds within)
{
	const auto end = clock_type::now() + within;
	while (!condition()) {
		if (clock_type::now() >= end)
			return false;
		std::this_thread::sleep_for(std::chrono::milliseconds(2));
	}
	return true;
}

std::chrono::milliseconds time_of(const std::function<void()> &work)
{
	const auto begin = clock_type::now();
	work();
	return std::chrono::duration_cast<std::chrono::milliseconds>(clock_type::now() - begin);
}
