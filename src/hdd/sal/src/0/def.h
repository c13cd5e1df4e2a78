// SPDX-License-Identifier: Apache-2.0
// Types and small records that every reader of the local side shares.
#ifndef DISKSCOUT_HDD_SAL_0_DEF_H
#define DISKSCOUT_HDD_SAL_0_DEF_H

#include <stdint.h>
#include <stdio.h>

constexpr int STR_SIZE = 64;
constexpr int LINE_SIZE = 1024;
constexpr int CMD_SIZE = 128;
constexpr int FNAME_SIZE = 4096;

typedef char str_t[STR_SIZE];     // short text field, always NUL-terminated
typedef char line_t[LINE_SIZE];   // one line of a table file, its newline included
typedef char cmd_t[CMD_SIZE];     // command text
typedef char fname_t[FNAME_SIZE]; // path or device name

typedef uint32_t mami_t;   // device number: major in bits 8-15, minor in bits 0-7
typedef uint64_t size32_t; // count of sectors, bytes or blocks, as each field says
typedef uint64_t off32_t;
typedef int64_t size64_t;
typedef FILE *fs_t;
typedef int fd_t;

// Decides about one candidate of a list: 0 drops it, anything else keeps it. A null filter keeps all.
typedef int (*filter_func_t)(const void *item, const void *arg);

// SCSI address.
struct idlun_t {
	uint8_t host;
	uint8_t channel;
	uint8_t id;
	uint8_t lun;
};

// Disk geometry; all zero when unknown.
struct chs_t {
	size32_t cylinders;
	size32_t heads;
	size32_t sectors; // per track
	size32_t bytes;   // per sector
};
typedef chs_t hdgeo_t;

// Space of a mounted file system, in 512-byte units.
struct space_t {
	size32_t total;
	size32_t free;
};
typedef space_t volspace_t;

// Identity of a device.
struct devid_t {
	char bus; // 'i' or 'c' IDE, 's' SCSI, 'u' USB, 'f' fibre channel, 'r' RAID
	str_t vendor;
	str_t model;
	str_t rev;
	str_t sn;
};

// Identity of a volume.
struct volid_t {
	str_t volname; // label
	str_t fsname;  // file-system type
};

// The low 32 bits of a number or an address, as every dump shows them.
template <class Number> constexpr int low_32(Number value)
{
	return static_cast<int>(static_cast<uint32_t>(value));
}
inline unsigned low_32(const void *address)
{
	return static_cast<unsigned>(reinterpret_cast<uintptr_t>(address));
}

// The separator of path components, as a text.
extern const char DCHAR_BUF[2];
extern const char *const PDCHAR;

// Appended to a shell command whose output nobody wants to see.
extern const char REDIR_PATH[FNAME_SIZE];
extern const char *const PREDIR_PATH;

#endif
