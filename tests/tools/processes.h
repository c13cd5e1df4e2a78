// SPDX-License-Identifier: Apache-2.0
// What the tests of our own processes share: what there is before must be there behind, and nothing else.
#ifndef DISKSCOUT_TESTS_TOOLS_PROCESSES_H
#define DISKSCOUT_TESTS_TOOLS_PROCESSES_H

#include "process_tree.h"

#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <string>

// Begins with nobody below this process, and ends so: no process, no descriptor more.
class ProcessTest : public testing::Test
{
protected:
	void SetUp() override;
	void TearDown() override;

private:
	std::size_t descriptors_ = 0;
};

// A directory of the test, gone with it; without links.
class scratch_t
{
public:
	scratch_t();
	~scratch_t();
	scratch_t(const scratch_t &) = delete;
	scratch_t &operator=(const scratch_t &) = delete;
	const std::string path;
};

// An environment variable, as long as this lives.
class variable_t
{
public:
	variable_t(const char *name, const std::string &value);
	~variable_t();
	variable_t(const variable_t &) = delete;
	variable_t &operator=(const variable_t &) = delete;

private:
	const char *name_;
	bool was_there_;
	std::string before_;
};

// Processes; each gives back its number. The work's return is its end, with status 0.
pid_t start(const std::function<void()> &work);
int wait_for(pid_t child);
[[noreturn]] void sleep_for_good();
void ignore_term();

// Numbers that one process tells another.
class numbers_t
{
public:
	numbers_t();
	~numbers_t();
	numbers_t(const numbers_t &) = delete;
	numbers_t &operator=(const numbers_t &) = delete;
	void tell(int number) const;
	int hear() const;

private:
	int ends_[2];
};

bool is_there(pid_t pid);
bool comes_true(const std::function<bool()> &condition,
                std::chrono::milliseconds within = std::chrono::seconds(5));
std::chrono::milliseconds time_of(const std::function<void()> &work);

#endif
