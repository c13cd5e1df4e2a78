// SPDX-License-Identifier: Apache-2.0
// Descriptors of devices: opening, and reading and writing whole sectors.
//
// Block devices are opened plainly: without a medium that fails, and nobody takes the size of the last one
// for an answer. Everything else is opened without waiting: where a pipe or a terminal line stands in a
// device's place, the calls fail.
#ifndef DISKSCOUT_HDD_SAL_0_FD_H
#define DISKSCOUT_HDD_SAL_0_FD_H

#include "hdd/sal/src/0/def.h"

constexpr unsigned SECTOR_SIZE = 512;

// Opens read-only and close-on-exec; negative on failure.
int fdopen_ro(const char *path);
// The same for reading and writing.
int fdopen_rw(const char *path);
// Seeks to byte sector * 512 from the start. 0, or -1.
int fdseeks(int fd, unsigned long sector);
// Zeroes buf, then reads len bytes. 0 only when all of them were read, else -1.
int fdread_buf(int fd, void *buf, unsigned long len);
// Writes len bytes. 0 only when all of them were written, else -1.
int fdwrite_buf(int fd, const void *buf, unsigned long len);

// Closes its descriptor when the scope ends.
class Descriptor
{
public:
	explicit Descriptor(const char *path) : Descriptor(fdopen_ro(path)) {}
	explicit Descriptor(int fd) : fd_(fd) {} // a negative one is not open
	~Descriptor();
	Descriptor(const Descriptor &) = delete;
	Descriptor &operator=(const Descriptor &) = delete;
	bool is_open() const { return fd_ >= 0; }
	int fd() const { return fd_; }

private:
	fd_t fd_;
};

#endif
