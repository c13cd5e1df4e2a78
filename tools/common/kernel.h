// SPDX-License-Identifier: Apache-2.0
// Calls past the C library. What a captured host shows, and the failures that are tried on the plug-ins, are
// made there: neither is meant for how our own processes deal with each other.
#ifndef DISKSCOUT_TOOLS_COMMON_KERNEL_H
#define DISKSCOUT_TOOLS_COMMON_KERNEL_H

#include <chrono>
#include <cstddef>
#include <ctime>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

// As their namesakes, with errno; a file that is opened is not handed on to another program.
inline int kernel_open(const char *path, int flags)
{
	return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags | O_CLOEXEC));
}

inline ssize_t kernel_read(int from, void *bytes, std::size_t count)
{
	return syscall(SYS_read, from, bytes, count);
}

inline ssize_t kernel_write(int to, const void *bytes, std::size_t count)
{
	return syscall(SYS_write, to, bytes, count);
}

// A signal ends it early.
inline void kernel_pause(std::chrono::milliseconds time)
{
	const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
	const timespec pause = {static_cast<time_t>(seconds.count()),
	                        static_cast<long>(std::chrono::nanoseconds(time - seconds).count())};
	syscall(SYS_nanosleep, &pause, nullptr);
}

#endif
