// SPDX-License-Identifier: Apache-2.0
// How a call of the C library is defined here: under its own name, visible to the whole process, with its own
// linkage.
#ifndef DISKSCOUT_REPLAY_CALL_H
#define DISKSCOUT_REPLAY_CALL_H

#define REPLAY_CALL extern "C" __attribute__((visibility("default")))

// What is compiled with buffer checks reaches the same calls by these names; no header declares them.
extern "C" {
int __open_2(const char *path, int flags);
int __open64_2(const char *path, int flags);
int __openat_2(int at, const char *path, int flags);
int __openat64_2(int at, const char *path, int flags);
long __read_chk(int fd, void *buffer, unsigned long count, unsigned long room);
long __pread_chk(int fd, void *buffer, unsigned long count, long offset, unsigned long room);
long __pread64_chk(int fd, void *buffer, unsigned long count, long offset, unsigned long room);
long __readlink_chk(const char *path, char *buffer, unsigned long count, unsigned long room);
long __readlinkat_chk(int at, const char *path, char *buffer, unsigned long count, unsigned long room);
char *__realpath_chk(const char *path, char *to, unsigned long room);
int __gethostname_chk(char *to, unsigned long count, unsigned long room);
}

#endif
