// SPDX-License-Identifier: Apache-2.0
// The outside calls that are counted, and the one that is to fail.
//
// A run under test is repeated with the first call failing, then the second, until a run ends before its n-th
// call: so every failure path is walked.
#ifndef DISKSCOUT_REPLAY_FAULTS_H
#define DISKSCOUT_REPLAY_FAULTS_H

namespace replay
{

enum counted_call_t {
	CALL_OPEN,
	CALL_FOPEN,
	CALL_FDOPEN,
	CALL_POPEN,
	CALL_PCLOSE,
	CALL_FCLOSE,
	CALL_CLOSE,
	CALL_READ,
	CALL_WRITE,
	CALL_LSEEK,
	CALL_IOCTL,
	CALL_STATFS,
	CALL_SCANDIR,
	CALL_OPENDIR,
	CALL_READLINK,
	CALL_STAT,
	CALL_MKNOD,
	CALL_MKDIR,
	CALL_UNLINK,
	CALL_FGETS,
	CALL_GETMNTENT,
	CALL_SYSTEM,
	CALL_READDIR,
	CALL_CLOSEDIR,
	CALL_REALPATH,
	CALL_UNAME,
	COUNTED_CALLS
};

// Counts the call. True when it is the one to fail: errno is set then, and the caller returns the call's own
// mark of failure.
bool must_fail(counted_call_t call);

// The errno that must_fail() leaves for this call.
int fault_errno(counted_call_t call);

void count_shell();
void count_device_open();

} // namespace replay

#endif
