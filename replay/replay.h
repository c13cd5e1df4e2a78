// SPDX-License-Identifier: Apache-2.0
// Shows a captured host to the program that this library is linked into or loaded before: its calls for the
// paths that the host covers (such as /proc, /dev, /etc/mtab) are answered from a directory, what it would
// have changed is logged, and any one of its outside calls can be made to fail.
//
// A test links the objects and switches hosts with these functions; a program that gets the library through
// LD_PRELOAD is steered by REPLAY_SYSROOT, REPLAY_LOG, REPLAY_FAIL and REPLAY_FAULT, and finds the same
// functions with dlsym. The whole of it is told in docs/replay.md.
#ifndef DISKSCOUT_REPLAY_REPLAY_H
#define DISKSCOUT_REPLAY_REPLAY_H

#ifdef __cplusplus
extern "C" {
#endif

#define REPLAY_API __attribute__((visibility("default")))

// Shows the host captured in `dir` from now on, or with a null `dir` the running one. Returns 0; or -1, with
// "file:line: what is wrong" on standard error, when `dir` or its host.txt is no captured host. After a
// failure the host shown before stays.
REPLAY_API int replay_use(const char *dir);

// Names the preload library that children started by popen() and system() get while a host is shown or a log
// is kept. Null: children see the running host.
REPLAY_API void replay_set_child_library(const char *path);

// Appends log lines to `file`; null: no log.
REPLAY_API void replay_log_to(const char *file);

// Sets the counts of calls, shells and opened devices back to 0.
REPLAY_API void replay_count_calls(void);

// The outside calls of this process since replay_count_calls(), failed ones included; and the shells that
// popen() and system() really started.
REPLAY_API long replay_calls(void);
REPLAY_API long replay_shells(void);

// How often a device of the host was opened since then, failed ones included: what only lists devices opens
// none, or a hung one would stop it.
REPLAY_API long replay_device_opens(void);

// Sets the counts back to 0 and makes the `nth` counted call from here fail, with `from_there_on` every later
// one as well. `nth` 0 ends that and leaves the counts alone, so that they can be read afterwards.
REPLAY_API void replay_fail_call(long nth, int from_there_on);

// What the host shown tells of a field of uname: "sysname", "nodename", "release", "version" or "machine".
// Null: it does not tell, and uname() answers the running kernel's; or no host is shown. Valid until another
// host is.
REPLAY_API const char *replay_uname_told(const char *field);

// What was wrong with the preload's environment or with its host, as one line without its end, when the
// program was started with REPLAY_FAULT=keep; null: nothing. Then no host may be shown, so who starts
// programs with REPLAY_FAULT sees to it that they ask.
REPLAY_API const char *replay_fault(void);

#ifdef __cplusplus
}
#endif

#endif
