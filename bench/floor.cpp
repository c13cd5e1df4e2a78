// SPDX-License-Identifier: Apache-2.0
#include "floor.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/hdreg.h>
#include <mntent.h>
#include <scsi/scsi.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <vector>

namespace
{

// The host's devices and mount points, known beforehand, so that the floor need not read them out of the
// tables.
const std::vector<std::string> IDE_DRIVES = {"hda", "hdb", "hdc", "hdd"};
const std::vector<std::string> IDE_DISKS = {"hda", "hdb", "hdd"};
const std::vector<std::string> SCSI_DISKS = {"sda", "sdb", "sdc", "sdd", "sde", "sdf", "sdg",
                                             "sdh", "sdi", "sdj", "sdk", "sdl", "sdm"};

FILE *open_table(const char *path)
{
	const int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
	fcntl(fd, F_SETFL, 0);
	return fdopen(fd, "r");
}

void read_lines(const std::string &path)
{
	FILE *file = open_table(path.c_str());
	char line[1024];
	while (fgets(line, sizeof line, file))
		fflush(nullptr);
	fflush(nullptr);
	fflush(nullptr);
	fclose(file);
}

void read_first_line(const std::string &path)
{
	FILE *file = open_table(path.c_str());
	char line[1024];
	if (fgets(line, sizeof line, file))
		fflush(nullptr);
	fflush(nullptr);
	fclose(file);
}

int any_drive(const dirent *entry)
{
	return entry->d_name[0] == 'h';
}

void read_ide()
{
	dirent **entries = nullptr;
	const int count = scandir("/proc/ide", &entries, any_drive, alphasort);
	for (int i = 0; i < count; i++)
		free(entries[i]);
	free(entries);
	for (const std::string &drive : IDE_DRIVES) {
		read_lines("/proc/ide/" + drive + "/identify");
		read_first_line("/proc/ide/" + drive + "/media");
		read_first_line("/proc/ide/" + drive + "/model");
	}
}

std::vector<std::string> read_mounts(FILE *table, size_t limit)
{
	std::vector<std::string> points;
	char buffer[16384];
	mntent entry;
	while (points.size() < limit && getmntent_r(table, &entry, buffer, sizeof buffer))
		points.emplace_back(entry.mnt_dir);
	return points;
}

std::vector<std::string> read_mount_pipe()
{
	FILE *table = popen("cat /etc/mtab", "re");
	// No list of mounts reaches further.
	std::vector<std::string> points = read_mounts(table, 32);
	pclose(table);
	return points;
}

int open_disk(const std::string &disk)
{
	const std::string path = "/dev/" + disk;
	struct stat status;
	stat(path.c_str(), &status);
	return open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

void ask_geometry(const std::string &disk)
{
	const int fd = open_disk(disk);
	unsigned long size;
	hd_geometry geometry;
	ioctl(fd, BLKGETSIZE, &size);
	ioctl(fd, HDIO_GETGEO, &geometry);
	close(fd);
}

void ask_address(const std::string &disk)
{
	const int fd = open_disk(disk);
	unsigned answer[2];
	ioctl(fd, SCSI_IOCTL_GET_IDLUN, answer);
	close(fd);
}

void read_tables(const std::string &disk)
{
	const int fd = open_disk(disk);
	unsigned long size;
	char sector[512];
	ioctl(fd, BLKGETSIZE, &size);
	std::vector<off_t> tables = {0};
	// The two disks of the host that have an extended partition.
	if (disk == "hdb" || disk == "sdc")
		tables = {0, 401625, 651625, 901625};
	for (const off_t table : tables) {
		lseek(fd, table * 512, SEEK_SET);
		if (read(fd, sector, sizeof sector) != sizeof sector)
			abort();
	}
	close(fd);
}

} // namespace

void floor_disks()
{
	read_lines("/proc/partitions");
	read_ide();
	read_lines("/proc/scsi/scsi");
	FILE *table = open_table("/etc/mtab");
	read_mounts(table, SIZE_MAX);
	fflush(nullptr);
	fclose(table);
	read_lines("/proc/partitions");
	for (const std::string &disk : IDE_DISKS)
		ask_geometry(disk);
	for (const std::string &disk : SCSI_DISKS) {
		ask_address(disk);
		ask_geometry(disk);
	}
}

void floor_partitions()
{
	floor_disks();
	for (const std::string &point : read_mount_pipe()) {
		struct statfs status;
		statfs(point.c_str(), &status);
	}
	for (const std::string &disk : IDE_DISKS)
		read_tables(disk);
	for (const std::string &disk : SCSI_DISKS)
		read_tables(disk);
}

void floor_cdroms()
{
	read_ide();
	read_mount_pipe();
	char target[4096];
	if (readlink("/dev/cdrom", target, sizeof target) < 0)
		abort();
	struct statfs status;
	statfs("/media/cdrom", &status);
}
