// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/linux/mdsb.h"

#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"
#include "hdd/sal/src/linux/xxid.h"

#include <string.h>
#include <unistd.h>

static_assert(sizeof(mdp_superblock_s) == MD_SB_BYTES, "as on disk");

void b0_mdsb(mdp_superblock_s *sb)
{
	b0(sb, sizeof *sb);
}

// The last 64 KiB of a device, counted in whole ones, are the superblock's; it stands at their start.
constexpr unsigned long RESERVED_SECTORS = 128;

static int seek_mdsb(int fd)
{
	unsigned long size;
	if (get_device_size(fd, &size) != 0 || size < RESERVED_SECTORS)
		return -1;
	return fdseeks(fd, (size & ~(RESERVED_SECTORS - 1)) - RESERVED_SECTORS);
}

int read_mdsb(const char *path, mdp_superblock_s *sb)
{
	b0_mdsb(sb);
	const Descriptor device(path);
	if (!device.is_open() || seek_mdsb(device.fd()) != 0)
		return -1;
	if (fdread_buf(device.fd(), sb, sizeof *sb) == 0)
		return 0;
	b0_mdsb(sb);
	return -1;
}

int clear_mdsb(const char *path)
{
	mdp_superblock_s zeros;
	b0_mdsb(&zeros);
	const Descriptor device(fdopen_rw(path));
	if (!device.is_open() || seek_mdsb(device.fd()) != 0)
		return -1;
	// Only what has reached the device is gone.
	return fdwrite_buf(device.fd(), &zeros, sizeof zeros) == 0 && fsync(device.fd()) == 0 ? 0 : -1;
}

bool is_mdsb(const mdp_superblock_s *sb)
{
	return sb->md_magic == MD_SB_MAGIC;
}

int get_mdsb_xxid(const mdp_superblock_s *sb, unsigned char uuid[16])
{
	// They do not stand together in the block.
	const uint32_t words[] = {sb->set_uuid0, sb->set_uuid1, sb->set_uuid2, sb->set_uuid3};
	memcpy(uuid, words, sizeof words);
	return 0;
}

void display_mdsb(const mdp_superblock_s *sb)
{
	unsigned char id[16];
	str_t uuid;
	get_mdsb_xxid(sb, id);
	xxid_unparse(id, uuid);

	fprintf(stderr, "md%d: md_magic=%08X csum=%08X version=%d.%d.%d valid=%d\n", low_32(sb->md_minor),
	        sb->md_magic, sb->sb_csum, low_32(sb->major_version), low_32(sb->minor_version),
	        low_32(sb->patch_version), is_mdsb(sb) ? 1 : 0);
	fprintf(stderr, "  level=%d size=%d chunk_size=%d events=(hi-%d,lo-%d)\n", low_32(sb->level),
	        low_32(sb->size), low_32(sb->chunk_size), low_32(sb->events_hi), low_32(sb->events_lo));
	fprintf(stderr, "  disks: nr=%d raid=%d active=%d working=%d failed=%d spare=%d\n",
	        low_32(sb->nr_disks), low_32(sb->raid_disks), low_32(sb->active_disks),
	        low_32(sb->working_disks), low_32(sb->failed_disks), low_32(sb->spare_disks));
	fprintf(stderr, "  uuid: %s\n", uuid);
	for (int i = 0; i < MD_SB_DISKS; i++) {
		fprintf(stderr, "disk%2d: ", i);
		display_mdsb_subdev(&sb->disks[i]);
	}
	fputs("this: ", stderr);
	display_mdsb_subdev(&sb->this_disk);
}

void display_mdsb_subdev(const mdp_device_descriptor_s *d)
{
	fprintf(stderr, "number=%d raid_disk=%d %02X:%02X (%d,%d) state=%d\n", low_32(d->number),
	        low_32(d->raid_disk), d->major, d->minor, low_32(d->major), low_32(d->minor),
	        low_32(d->state));
}
