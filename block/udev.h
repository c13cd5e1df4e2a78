// SPDX-License-Identifier: Apache-2.0
// udev's database: /run/udev/data/b8:1, one file a device, one line an item.
//
//   S:disk/by-id/ata-ACME_SSD_1234-part1
//   I:1234567
//   E:ID_MODEL=ACME_SSD
//   E:ID_FS_LABEL_ENC=two\x20words
//   G:systemd
//
// Nothing of udev runs here: a host without it has no such files.
#ifndef DISKSCOUT_BLOCK_UDEV_H
#define DISKSCOUT_BLOCK_UDEV_H

#include "sysfs.h"

// The folder of the database; not open on a host without udev.
class UdevDatabase
{
public:
	UdevDatabase() : folder_("/run/udev/data") {}
	const Folder &folder() const { return folder_; }

private:
	Folder folder_;
};

// What the database says about one device.
class UdevRecord
{
public:
	// Reads it into the arena; a device without a number has none.
	UdevRecord(Arena *arena, const UdevDatabase &database, int major_number, int minor_number);

	bool is_there() const { return !text_.empty(); }
	// The value as it stands there, empty for none.
	text_t value(text_t key) const;
	// The first of the keys that has one.
	text_t first_value(const text_t *keys, size_t count) const;
	// A value in which "\x20" stands for a byte, as these bytes; empty for none.
	text_t bytes(Arena *arena, text_t key) const;
	// The same without blanks at its ends, as records hold texts; null for none.
	const char *decoded(Arena *arena, text_t key) const;
	// The next of its links, such as "disk/by-id/..."; empty at the end. Begin with *rest = links().
	text_t links() const { return text_; }
	static text_t next_link(text_t *rest);

private:
	text_t text_;
};

#endif
