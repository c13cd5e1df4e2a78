// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/linux/devio.h"

#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/str.h"

#include <limits.h>
#include <linux/fs.h>
#include <linux/hdreg.h>
#include <scsi/scsi.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <unistd.h>

// Minors that one disk takes: itself and its partitions.
constexpr int IDE_MINORS = 64;
constexpr int SCSI_MINORS = 16;
constexpr int IDE_PARTITIONS = 16;
constexpr int LETTERS = 26;

static mami_t ide_mami(const devname_t &name)
{
	const int drive = name.stem[2] - 'a';
	const int partition = name.number == -1 ? 0 : name.number;
	return make_mami(static_cast<unsigned>(IDEDEV_MAJOR[drive / 2]),
	                 static_cast<unsigned>(drive % 2 * IDE_MINORS + partition));
}

static mami_t scsi_mami(const devname_t &name)
{
	const bool long_name = name.stem.size() == 4;
	const int disk =
		long_name ? (name.stem[2] - 'a' + 1) * LETTERS + (name.stem[3] - 'a') : name.stem[2] - 'a';
	const int partition = name.number == -1 ? 0 : name.number;
	return make_mami(static_cast<unsigned>(SCSIDEV_MAJOR[disk / SCSI_MINORS]),
	                 static_cast<unsigned>(disk % SCSI_MINORS * SCSI_MINORS + partition));
}

// The device number that a name stands for. 0, or -1 when no rule takes the name.
static int devname2mami(const char *path, mami_t *mami)
{
	const devname_t name = split_devname(path);
	if (is_ide_name(name))
		*mami = ide_mami(name);
	else if (is_scsi_name(name))
		*mami = scsi_mami(name);
	else if (name.stem == "md" && name.number >= 0 && name.number <= 255)
		*mami = make_mami(MD_MAJOR_NUMBER, static_cast<unsigned>(name.number));
	else
		return maminame2mami(path, mami);
	return 0;
}

static int table_position(const int *majors, int count, int major)
{
	for (int i = 0; i < count; i++)
		if (majors[i] == major)
			return i;
	return -1;
}

static void append_partition(char *out, int partition)
{
	char digits[12];
	snprintf(digits, sizeof digits, "%d", partition);
	if (partition != 0)
		str_append(out, FNAME_SIZE, digits);
}

static void ide_devname(int position, int minor, char *out)
{
	snprintf(out, FNAME_SIZE, "hd%c", 'a' + 2 * position + minor / IDE_MINORS);
	append_partition(out, minor % IDE_MINORS);
}

static void scsi_devname(int position, int minor, char *out)
{
	const int disk = SCSI_MINORS * position + minor / SCSI_MINORS;
	if (disk < LETTERS)
		snprintf(out, FNAME_SIZE, "sd%c", 'a' + disk);
	else
		snprintf(out, FNAME_SIZE, "sd%c%c", 'a' - 1 + disk / LETTERS, 'a' + disk % LETTERS);
	append_partition(out, minor % SCSI_MINORS);
}

int ok_devname(const char *name, char *out)
{
	b0_fname(out);
	mami_t mami = 0;
	if (devname2mami(name, &mami) != 0)
		return -1;

	const int major = static_cast<int>(mami_major(mami));
	const int minor = static_cast<int>(mami_minor(mami));
	const int ide = table_position(IDEDEV_MAJOR, IDEDEV_MAJORS, major);
	const int scsi = table_position(SCSIDEV_MAJOR, SCSIDEV_MAJORS, major);
	if (ide >= 0 && minor < 2 * IDE_MINORS && minor % IDE_MINORS <= IDE_PARTITIONS)
		ide_devname(ide, minor, out);
	else if (scsi >= 0)
		scsi_devname(scsi, minor, out);
	else if (major == MD_MAJOR_NUMBER)
		snprintf(out, FNAME_SIZE, "md%d", minor);
	else
		snprintf(out, FNAME_SIZE, "%02X:%02X", static_cast<unsigned>(major),
		         static_cast<unsigned>(minor));
	return 0;
}

int create_dev(const char *path, unsigned int mami)
{
	unlink(path);
	return mknod(path, S_IFBLK | 0777, makedev(mami_major(mami), mami_minor(mami))) == 0 ? 0 : -1;
}

int get_device_size(int fd, unsigned long *size)
{
	*size = 0;
	unsigned long sectors = 0;
	if (ioctl(fd, BLKGETSIZE, &sectors) != 0)
		return -1;
	*size = sectors;
	return 0;
}

int get_device_geometry(int fd, hdgeo_t *geo)
{
	b0(geo, sizeof *geo);
	unsigned long size = 0;
	hd_geometry answer = {};
	if (get_device_size(fd, &size) != 0 || size == 0 || ioctl(fd, HDIO_GETGEO, &answer) != 0)
		return -1;
	const unsigned long track = static_cast<unsigned long>(answer.heads) * answer.sectors;
	if (track == 0)
		return -1;
	// The answer's own cylinder count has 16 bits and overflows on large disks.
	geo->cylinders = size / track;
	geo->heads = answer.heads;
	geo->sectors = answer.sectors;
	geo->bytes = 512;
	return 0;
}

int get_device_idlun(int fd, idlun_t *idlun)
{
	b0_idlun(idlun);
	struct {
		uint32_t address;
		uint32_t host_unique_id;
	} answer = {};
	if (ioctl(fd, SCSI_IOCTL_GET_IDLUN, &answer) != 0)
		return -1;
	idlun->host = static_cast<uint8_t>(answer.address >> 24);
	idlun->channel = static_cast<uint8_t>(answer.address >> 16);
	idlun->lun = static_cast<uint8_t>(answer.address >> 8);
	idlun->id = static_cast<uint8_t>(answer.address);
	return 0;
}

// Divided as a signed number: a count of bytes beyond 63 bits is negative and shows as a huge size.
static size32_t bytes_to_units(uint64_t bytes)
{
	return static_cast<size32_t>(static_cast<size64_t>(bytes) / 512);
}

int get_volspace(const char *path, volspace_t *space)
{
	*space = {};
	struct statfs status;
	if (statfs(path, &status) != 0)
		return -1;
	const auto block_size = static_cast<uint64_t>(status.f_bsize);
	space->total = bytes_to_units(block_size * status.f_blocks);
	space->free = bytes_to_units(block_size * status.f_bfree);
	return 0;
}

int get_uptime()
{
	line_t line;
	if (fsread_line_by_path("/proc/uptime", line) != 0)
		return -1;
	std::string_view text = line;
	int64_t seconds;
	if (!str_next_int(&text, &seconds) || seconds < 0 || seconds > INT_MAX)
		return -1;
	return static_cast<int>(seconds);
}
