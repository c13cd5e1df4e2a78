// SPDX-License-Identifier: Apache-2.0
// One question at a time: flock, which the kernel takes back when the last holder is gone.
#include "limit_lock.h"

#include "process_tree.h"
#include "worker.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

[[noreturn]] static void fail(const std::string &file)
{
	throw std::runtime_error(fmt::format("the lock {} cannot be held: {}", file, strerror(errno)));
}

// Who may only read it may hold it, too. No link is followed: it could name a file that is not there.
static int open_lock(const std::string &file)
{
	constexpr int HOW = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
	constexpr mode_t OURS_ALONE = 0600;
	const int made = open(file.c_str(), O_RDWR | O_CREAT | HOW, OURS_ALONE);
	const int opened = made >= 0 || errno != EACCES ? made : open(file.c_str(), O_RDONLY | HOW);
	if (opened < 0)
		fail(file);
	return opened;
}

// The file's name may be written in many ways.
static std::string mark_of(int lock)
{
	struct stat status = {};
	fstat(lock, &status);
	return fmt::format("{}:{}", status.st_dev, status.st_ino);
}

static void end_what_was_left(int lock)
{
	static const char NAME[] = "DISKSCOUT_LIMIT_LOCK";
	const std::string mark = mark_of(lock);
	end_processes_started_with(fmt::format("{}={}", NAME, mark));
	setenv(NAME, mark.c_str(), 1);
}

void hold_lock(const std::string &file, std::chrono::milliseconds limit)
{
	using clock = std::chrono::steady_clock;
	constexpr std::chrono::milliseconds PAUSE(20);
	const int lock = open_lock(file);
	const auto end = clock::now() + limit;
	while (flock(lock, LOCK_EX | LOCK_NB) != 0) {
		if (errno != EWOULDBLOCK && errno != EINTR)
			fail(file);
		if (limit.count() > 0 && clock::now() >= end)
			throw std::runtime_error(fmt::format("another question holds the lock {} for longer "
			                                     "than {}: the tool was not asked",
			                                     file, in_seconds(limit)));
		std::this_thread::sleep_for(PAUSE);
	}
	end_what_was_left(lock);
}
