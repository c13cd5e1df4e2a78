// SPDX-License-Identifier: Apache-2.0
// A captured host in memory: what DIR/host.txt says, ready to be answered from.
//
//   covers /proc                 covers /root/hardraid.cfg
//   device /dev/hda              mount /boot 1024 15225 15188
//     BLKGETSIZE 524288          mount /stale fails ESTALE
//     table 0                    uname release 6.1.0-18-amd64
//       entry 80 83 63 262017
//
// All of it lives in one arena and is read-only once it is loaded, but for the count of opens that a device
// with `opens` still allows.
#ifndef DISKSCOUT_REPLAY_TABLE_H
#define DISKSCOUT_REPLAY_TABLE_H

#include "replay/arena.h"
#include "replay/index.h"

#include <limits.h>
#include <stdint.h>

namespace replay
{

constexpr unsigned SECTOR_BYTES = 512;
// The longest device path: a descriptor carries it in its memfd's name.
constexpr size_t DEVICE_PATH_MAX = 200;
// More sectors than that make no file the kernel would let us have.
constexpr uint64_t CONTENT_SECTORS_MAX = uint64_t{1} << 52;

enum answer_kind_t {
	BLKGETSIZE_ANSWER,
	BLKGETSIZE64_ANSWER,
	BLKSSZGET_ANSWER,
	BLKPBSZGET_ANSWER,
	BLKROGET_ANSWER,
	BLKIOMIN_ANSWER,
	BLKIOOPT_ANSWER,
	BLKALIGNOFF_ANSWER,
	BLKGETZONESZ_ANSWER,
	HDIO_GETGEO_ANSWER,
	GET_IDLUN_ANSWER,
	SEND_COMMAND_ANSWER,
	CDROM_GET_CAPABILITY_ANSWER,
	CDROM_DRIVE_STATUS_ANSWER,
	CDROM_LAST_WRITTEN_ANSWER,
	OPEN_ANSWER,
	ANSWER_KINDS
};

// What one request of a device answers: an errno, or the values of its kind.
struct answer_t {
	bool given;
	int error;            // errno, 0: it succeeds
	uint64_t value[4];    // as the directive lists them
	int result;           // SEND_COMMAND: what the call itself returns
	unsigned char *reply; // SEND_COMMAND: from the command bytes on
	unsigned reply_bytes;
};

struct sector_t {
	uint64_t number;
	int line;         // in host.txt, for the message when it lies too far out
	unsigned used;    // bytes named so far, for a raw sector that goes on
	unsigned entries; // entries named so far, for a partition table
	unsigned char data[SECTOR_BYTES];
	sector_t *next;
};

struct device_t {
	const char *path;
	int line;
	bool has_number;
	unsigned major, minor; // 0:0 unless told
	answer_t answers[ANSWER_KINDS];
	bool has_opens;
	uint64_t opens_left; // has_opens: how often it can still be opened
	bool has_end;
	uint64_t end;      // has_end: the content's sectors, whatever its size says
	const char *image; // file in the host directory, or null
	sector_t *sectors;
	device_t *next, *same_slot;
};

struct mount_t {
	const char *path;
	int error; // errno, 0: it answers
	uint64_t bsize, blocks, bfree, bavail;
	uint64_t type, frsize, files, ffree, flags, fsid, namelen;
	mount_t *next, *same_slot;
};

// The fields of uname, in its own order.
constexpr unsigned UNAME_FIELDS = 5;

// The field's place by its name; UNAME_FIELDS when there is none of this name.
unsigned uname_field(const char *name);

// A path that the host stands in for: a file, or a folder with all below it. What is not captured there does
// not exist.
struct cover_t {
	const char *path; // plain
	cover_t *next;
};

struct host_table_t {
	char directory[PATH_MAX]; // absolute, links resolved
	cover_t *covers;          // never empty once the table is loaded
	index_t<device_t> devices;
	index_t<mount_t> mounts;
	const char *uname[UNAME_FIELDS]; // null: the running kernel's
};

// Loads `directory` and its host.txt into `memory`, which stays the caller's to close. Returns null, the
// fault told on standard error, when it is no host.
host_table_t *load_table(const char *directory, arena_t *memory);

device_t *find_device(host_table_t *table, const char *path);
const mount_t *find_mount(const host_table_t *table, const char *path);

// Whether the host stands in for this plain path.
bool is_covered(const host_table_t *table, const char *plain);

// What the device answers to one of the two requests for its size: one that is not told follows from the
// other.
answer_t size_answer(const device_t &dev, answer_kind_t kind);

// Where the content ends: what `ends` says, else what its size is. False for a device that gives neither: its
// content ends after its last named sector or its image.
bool content_end(const device_t &dev, uint64_t *sectors);

// The absolute path of an image file; false when it does not fit.
bool image_path(const host_table_t &table, const char *name, char (&out)[PATH_MAX]);

} // namespace replay

#endif
