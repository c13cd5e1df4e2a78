// SPDX-License-Identifier: Apache-2.0
// The outside calls that are counted; see faults.h.
#include "replay/faults.h"

#include "replay/host.h"
#include "replay/replay.h"

#include <atomic>
#include <errno.h>

namespace replay
{

static std::atomic<long> calls;
static std::atomic<long> shells;
static std::atomic<long> device_opens;
static std::atomic<long> failing_call; // 0: none
static std::atomic<bool> failing_on;

// What the kernel or the C library says in the usual case of such a failure.
static constexpr struct {
	counted_call_t call; // its own index
	int error;
} FAULTS[] = {
	{CALL_OPEN, ENXIO},     {CALL_FOPEN, EMFILE},   {CALL_FDOPEN, ENOMEM}, {CALL_POPEN, ENOMEM},
	{CALL_PCLOSE, ECHILD},  {CALL_FCLOSE, EIO},     {CALL_CLOSE, EIO},     {CALL_READ, EIO},
	{CALL_WRITE, EIO},      {CALL_LSEEK, EINVAL},   {CALL_IOCTL, EIO},     {CALL_STATFS, EIO},
	{CALL_SCANDIR, ENOMEM}, {CALL_OPENDIR, EMFILE}, {CALL_READLINK, EIO},  {CALL_STAT, EIO},
	{CALL_MKNOD, EPERM},    {CALL_MKDIR, EROFS},    {CALL_UNLINK, EPERM},  {CALL_FGETS, EIO},
	{CALL_GETMNTENT, EIO},  {CALL_SYSTEM, EAGAIN},  {CALL_READDIR, EIO},   {CALL_CLOSEDIR, EIO},
	{CALL_REALPATH, EIO},   {CALL_UNAME, EFAULT},
};

static constexpr bool each_call_has_its_row()
{
	for (int call = 0; call < COUNTED_CALLS; call++)
		if (FAULTS[call].call != call)
			return false;
	return sizeof FAULTS / sizeof FAULTS[0] == COUNTED_CALLS;
}
static_assert(each_call_has_its_row(), "the rows stand in the order of the calls, one each");

int fault_errno(counted_call_t call)
{
	return FAULTS[call].error;
}

bool must_fail(counted_call_t call)
{
	// A preload learns from its environment which call is to fail: even the first one must see that.
	(void)shown_host();
	const long number = ++calls;
	const long failing = failing_call;
	const bool fails = failing > 0 && (failing_on ? number >= failing : number == failing);
	if (fails)
		errno = fault_errno(call);
	return fails;
}

void count_shell()
{
	++shells;
}

void count_device_open()
{
	++device_opens;
}

} // namespace replay

extern "C" void replay_count_calls(void)
{
	replay::calls = 0;
	replay::shells = 0;
	replay::device_opens = 0;
}

extern "C" long replay_calls(void)
{
	return replay::calls;
}

extern "C" long replay_shells(void)
{
	return replay::shells;
}

extern "C" long replay_device_opens(void)
{
	return replay::device_opens;
}

extern "C" void replay_fail_call(long nth, int from_there_on)
{
	if (nth > 0)
		replay_count_calls();
	replay::failing_on = from_there_on != 0;
	replay::failing_call = nth;
}
