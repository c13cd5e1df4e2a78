/* SPDX-License-Identifier: Apache-2.0 */
/*
 * What diskscout-block.so tells about the block devices of a Linux host of today: devices, what stands on
 * what, what is on them, where that is mounted, software RAID.
 *
 * The library exports GetItemInfo and SetItemInfo, declared as those of diskscout.so are; an agent that loads
 * both keeps the pointers that dlsym() gave for each. It keeps nothing between calls: any number of threads
 * may ask at once. The layout is a binary interface of 64-bit Linux. This header compiles alone as C99 and as
 * C++.
 *
 * Every record begins with its own size, so that later releases may add fields at its end: read a field only
 * when it lies within record_size. Then comes `next`, null at the end of a list. Texts and inner lists lie in
 * the same allocation as their record: they live until its list is released, and are not freed by themselves.
 *
 * Absent is told apart from everything that a host can answer: a text is null, a number is BLOCK_ABSENT, an
 * inner list is null. Flags are 0, 1 or BLOCK_ABSENT.
 *
 * Texts are valid UTF-8 without control characters: a byte that is no part of valid UTF-8, a control
 * character (U+0000 to U+001F, U+007F to U+009F) and a backslash stand as "\x" and two lower-case hexadecimal
 * digits a byte. So the bytes can always be had back. Words in double quotes are texts of this library;
 * others may be added.
 */
#ifndef DISKSCOUT_BLOCK_H
#define DISKSCOUT_BLOCK_H

#include "define_command.h"

#include <stddef.h>

/* Query codes; the release code of a query is the query code plus one. None takes an argument. */
enum {
	CMD_GET_BLOCK_DEVICES = 222100, /* block_device */
	CMD_FREE_BLOCK_DEVICES = 222101,
	CMD_GET_BLOCK_LINKS = 223100, /* block_link */
	CMD_FREE_BLOCK_LINKS = 223101,
	CMD_GET_BLOCK_CONTENTS = 224100, /* block_content */
	CMD_FREE_BLOCK_CONTENTS = 224101,
	CMD_GET_BLOCK_MOUNTS = 225100, /* block_mount */
	CMD_FREE_BLOCK_MOUNTS = 225101,
	CMD_GET_BLOCK_ARRAYS = 226100, /* block_array */
	CMD_FREE_BLOCK_ARRAYS = 226101
};

enum { BLOCK_ABSENT = -1 };

/* One of several texts. */
typedef struct block_text {
	size_t record_size;
	struct block_text *next;
	const char *text; /* never null */
} block_text;

/*
 * One block device, also one without a medium or of size 0; ordered by name, numbers in names by their value.
 * No device is opened or asked for this list: everything is what the kernel and udev's database know already.
 *
 * Where a text of the identity comes from stands beside it: "kernel" (an attribute of the device that is
 * whole), "vpd" (its vital product data, or the IDENTIFY data that is kept as such), "udev" (udev's
 * database), "short" (an attribute that the kernel cuts: model to 16 characters, firmware to 4), "not asked"
 * (absent: only the device itself could tell, and it is not asked), null (absent: nobody tells one).
 */
typedef struct block_device {
	size_t record_size;
	struct block_device *next;
	const char *name; /* the kernel's name, such as nvme0n1p2 or dm-0; never null */
	const char *node; /* device node, such as /dev/nvme0n1p2; absent for a hidden device */
	int major, minor; /* device number; absent for a hidden device */
	/* "disk", "partition", "rom", "md", "dm", "loop", "zram", "ram", "floppy", "path" (a hidden path of
	   an NVMe namespace), or the driver's own name for its devices ("nbd", "rbd", "bcache") */
	const char *kind;
	const char *disk;      /* "partition": name of the device that it is part of; else absent */
	int partition_number;  /* "partition": from 1 on; else absent */
	long long size;        /* bytes; 0 without a medium */
	int logical_sector;    /* bytes; that of its disk for a partition, as the next five are */
	int physical_sector;   /* bytes */
	int rotational;        /* flag */
	int removable;         /* flag: the medium can be taken out */
	int hidden;            /* flag: it has no node and is a path of another device */
	int read_only;         /* flag, its own also for a partition */
	const char *transport; /* "nvme", "sata", "ata", "sas", "usb", "virtio", "iscsi", "fc", "scsi", "mmc"
	                          ... */
	const char *vendor;    /* blanks around the text are cut, as in the next three; null for ATA disks */
	const char *model;
	const char *model_source;
	const char *serial;
	const char *serial_source;
	const char *firmware; /* revision */
	const char *firmware_source;
	const char *wwn;   /* world-wide name of the unit: "0x" and 16 or 32 hexadecimal digits; NVMe: the
	                      kernel's text, such as eui.0025385b71b0a9f2 */
	const char *eui64; /* 16 hexadecimal digits (NVMe), 16, 24 or 32 (SCSI) */
	const char *nguid; /* NVMe: 32 hexadecimal digits */
	const char *uuid;  /* NVMe: UUID of the namespace */
	int scsi_host, scsi_channel, scsi_target; /* SCSI address; absent together */
	long long scsi_lun;
	block_text *links; /* other paths in /dev that lead to it, by name, such as /dev/disk/by-id/... */
	const char *controller_pci; /* PCI address of the controller, such as 0000:00:1f.2 */
	int numa_node;              /* of the controller; absent when the kernel knows of none */
	const char
		*state; /* as the kernel tells it: "running", "offline", "live"; dm: "running", "suspended" */
	const char *dm_name;
	const char *dm_uuid;
	const char *dm_kind; /* "lvm", "crypt", "multipath", "partition", another prefix of dm_uuid in small
	                        letters, or "unknown" without one; null for what is no dm device */
	const char
		*dm_target; /* targets of the table, each once: "linear,striped"; absent without permission */
	const char *backing_file; /* loop: the file behind it */
	int under_root; /* flag: the file system mounted at / stands on it, through whatever lies between */
	int under_boot; /* flag: that of /boot */
	int under_swap; /* flag: a swap area in use */
} block_device;

/* That one device stands on another; many to many, ordered by `upper` and `lower`. */
typedef struct block_link {
	size_t record_size;
	struct block_link *next;
	const char *upper;    /* name of the device that stands on the other; never null */
	const char *lower;    /* name of the one that carries it; never null */
	const char *relation; /* "partition" (upper is part of lower, also by a mapping), "slave", "path"
	                         (lower is one way to upper) */
	const char *address;  /* "path": where it leads through: H:C:T:L, PCI address or the controller's own
	                         text */
	const char *state;    /* "path": as the kernel tells it, such as "running" or "live" */
	const char
		*access; /* "path" of an NVMe namespace: "optimized", "non-optimized", "inaccessible" ... */
} block_link;

/* One entry of a partition table. */
typedef struct block_partition {
	size_t record_size;
	struct block_partition *next;
	const char *name;  /* name of the kernel's device for it: of that number, and beginning there;
	                      absent when it has none */
	int number;        /* from 1 on, as in the device's name */
	long long start;   /* bytes from the disk's beginning */
	long long size;    /* bytes; the kernel alone knows no more than the beginning of an extended one */
	const char *type;  /* "0x83", a GUID, or a word of the table's own: "Apple_HFS" */
	const char *uuid;  /* of the entry */
	const char *label; /* name in a GUID partition table */
	long long flags;   /* of the entry, as stored: the boot byte (128: bootable), or a GUID entry's
	                      attributes, of which the highest makes it negative; all 64 of them are told as
	                      absent */
} block_partition;

/*
 * What is on one device, for every device that is not hidden, in the order of their names. Devices are opened
 * read-only for this list, without waiting for a medium; one of size 0, and one that is suspended or stands
 * on one that is, are not opened. Where one could not be read, what udev's database or the kernel knows of it
 * stands here; of one of size 0 nothing.
 */
typedef struct block_content {
	size_t record_size;
	struct block_content *next;
	const char *name;   /* name of the device; never null */
	const char *source; /* "device"; "udev" (its database, and the kernel for partitions that are not in
	                       it); "kernel" (its partitions); or null: nobody knows anything */
	int error;     /* errno of what kept the device from being read, such as EACCES or EIO; of one that
	                  was not opened ENOMEDIUM (size 0) or EBUSY (suspended); EFBIG: its partition
	                  table is longer than anybody would make one; absent when it was read */
	int ambiguous; /* flag: signatures of several kinds, none of which is taken; a partition table is
	                  told all the same; absent unless read */
	const char *table;    /* kind of partition table: "gpt", "dos" ..., or "PMBR": the protective table
	                         of a GUID partition table without a valid one; absent when there is none */
	const char *table_id; /* its identifier: a GUID, or "0x" and 8 digits */
	block_partition *partitions; /* in the table's order; empty entries are left out */
	const char *usage;           /* "filesystem", "raid", "crypto", "other" */
	const char *type; /* "ext4", "linux_raid_member", "LVM2_member", "crypto_LUKS", "swap" ... */
	const char *label;
	const char *uuid;     /* of file system, array or pool: 8-4-4-4-12 digits, "ABCD-1234" ... */
	const char *uuid_sub; /* of this member, where uuid is that of the whole */
	const char *version;
} block_content;

/*
 * One mount point, or one swap area in use; mount points in the kernel's order, then swap areas. What a mount
 * point names is not opened; its space is asked of the kernel only where no network and no program has to
 * answer.
 */
typedef struct block_mount {
	size_t record_size;
	struct block_mount *next;
	const char *kind;          /* "mount", "swap" */
	int id, parent_id;         /* of the mount; absent for swap */
	int major, minor;          /* of the file system, anonymous ones included; absent for swap */
	block_text *devices;       /* names of the block devices that the file system or swap area lies on */
	const char *source;        /* as the kernel tells it: a node, a remote name, a word; swap: the path */
	const char *type;          /* file system type; swap: "partition" or "file" */
	const char *root;          /* what of the file system is mounted, such as / or /@home */
	const char *mount_point;   /* absent for swap */
	const char *options;       /* of the mount: "rw,relatime" */
	const char *super_options; /* of the file system: "rw,errors=remount-ro" */
	int shadowed;              /* flag: another mount hides it; absent for swap */
	long long total, used;     /* bytes */
	long long available;       /* bytes, for an ordinary user; absent for swap */
	int priority;              /* of a swap area, -32768 to 32767: absent can only be told by `kind` */
} block_mount;

/* One member of an array. */
typedef struct block_member {
	size_t record_size;
	struct block_member *next;
	const char *name;  /* name of the device; never null */
	const char *role;  /* "active", "spare", "faulty", "journal", "replacement" */
	int slot;          /* place in the array from 0 on; absent for one that has none */
	const char *state; /* the kernel's words: "in_sync,write_mostly" */
	long long errors;  /* read errors that were put right */
} block_member;

/* One software RAID array (md), whatever its metadata. */
typedef struct block_array {
	size_t record_size;
	struct block_array *next;
	const char *name;        /* name of the device; never null */
	const char *uuid;        /* as udev's database or the kernel knows it: 8:8:8:8 hexadecimal digits */
	const char *metadata;    /* "0.90", "1.2", "external:...", "none" */
	const char *level;       /* "raid1", "linear" ... */
	const char *state;       /* the kernel's word: "clean", "active", "readonly", "inactive" ... */
	int wanted;              /* members that it is made for */
	int active;              /* members that are in step and at work */
	int failed;              /* faulty ones that are still in it */
	int spare;               /* ones that wait, or are being rebuilt */
	int degraded;            /* members that it lacks; absent for levels without redundancy */
	long long size;          /* bytes of the array */
	int chunk_size;          /* bytes; absent for levels that have none */
	int layout;              /* the level's own number */
	const char *sync_action; /* "idle", "resync", "recover", "check", "repair", "reshape", "frozen" */
	long long sync_done;     /* sectors of 512 bytes; absent when nothing runs */
	long long sync_total;    /* sectors of 512 bytes; absent when nothing runs */
	int sync_speed;          /* KiB a second; absent when nothing runs */
	long long mismatches;    /* sectors that the last check found different */
	const char *bitmap;      /* "none", "file", or where the internal one lies: "+8" */
	const char *consistency; /* "bitmap", "journal", "ppl", "resync", "none" */
	block_member *members;   /* slots first, in their order, then the others by name */
} block_array;

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Answers cmd->nCommand. 0: *result is the first record, or null, *length their number; the list is the
 * caller's, to be released with the code one above. Else -1, *result null, *length 0, and errno tells why:
 * ENOMEM, or what the table that the list is made from could not be read for, such as ENOENT on a host
 * without /sys. An unknown code and a null argument give -1 with EINVAL and touch nothing.
 *
 * A device that comes or goes while it is read is left out: it lacks one of the attributes that all others
 * have.
 */
int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length);

/* Releases the list behind *result and sets it to null; 0. An unknown code or a null argument gives -1. */
int SetItemInfo(const IPMICOMMAND *cmd, void **result);

/* Records of all lists that are not released yet; inner ones do not count. Read it as one word. */
extern int memory_counter_block;

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
