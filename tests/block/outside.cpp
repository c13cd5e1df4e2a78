// SPDX-License-Identifier: Apache-2.0
#include "outside.h"

#include <atomic>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdlib.h>
#include <utility>

static std::atomic<long> held;
static std::atomic<long> blocks_until_refused; // 0: none is
static std::atomic<bool> refuse_on;
static std::atomic<bool> refused;
static std::function<void(const std::string &)> watcher;

long blocks_held()
{
	return held;
}

void refuse_block(long nth, bool from_there_on)
{
	refuse_on = from_there_on;
	if (nth > 0)
		refused = false;
	blocks_until_refused = nth;
}

bool was_refused()
{
	return refused;
}

Watch::Watch(std::function<void(const std::string &)> look)
{
	watcher = std::move(look);
}

Watch::~Watch()
{
	watcher = nullptr;
}

int descriptors_open()
{
	constexpr int MANY = 1024;
	int open = 0;
	for (int fd = 0; fd < MANY; fd++)
		open += fcntl(fd, F_GETFD) >= 0;
	return open;
}

static bool must_refuse()
{
	const long left = blocks_until_refused;
	if (left == 0)
		return false;
	if (left > 1) {
		blocks_until_refused = left - 1;
		return false;
	}
	refused = true;
	if (!refuse_on)
		blocks_until_refused = 0;
	errno = ENOMEM;
	return true;
}

static void look_at(const char *path)
{
	if (watcher)
		watcher(path);
}

extern "C" {

void *__real_malloc(size_t size);
void __real_free(void *block);
int __real_open(const char *path, int flags, ...);
int __real_openat(int folder, const char *path, int flags, ...);

void *__wrap_malloc(size_t size)
{
	void *block = must_refuse() ? nullptr : __real_malloc(size);
	held += block != nullptr;
	return block;
}

void __wrap_free(void *block)
{
	held -= block != nullptr;
	__real_free(block);
}

int __wrap_open(const char *path, int flags, ...)
{
	va_list rest;
	va_start(rest, flags);
	const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
	va_end(rest);
	look_at(path);
	return __real_open(path, flags, mode);
}

int __wrap_openat(int folder, const char *path, int flags, ...)
{
	va_list rest;
	va_start(rest, flags);
	const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
	va_end(rest);
	look_at(path);
	return __real_openat(folder, path, flags, mode);
}
}
