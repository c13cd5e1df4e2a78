/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Makes and changes software-RAID arrays with superblocks of format 0.90, and tells what the kernel thinks of
 * them, for machines that have no administration program.
 *
 *   vm-md create MINOR LEVEL CHUNK-KIB clean|dirty MEMBER...    LEVEL: linear, 0, 1, 5, 6, 10
 *   vm-md assemble MINOR MEMBER...     from the members' superblocks; it is not started
 *   vm-md run MINOR
 *   vm-md stop MINOR
 *   vm-md fail|add|remove MINOR MEMBER
 *   vm-md info MINOR
 *
 * A MEMBER is a device node; "missing" leaves a place of a new array empty.  "info" prints one line
 * "MEMBERS-IN-SYNC SPARES", then a line "NUMBER MAJOR:MINOR RAID-DISK STATE" for each member that is there.
 */
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

/* the kernel's headers need these first */
#include <asm/byteorder.h>
#include <linux/major.h>
#include <linux/raid/md_p.h>
#include <linux/raid/md_u.h>
#include <linux/types.h>

static int array = -1; /* the open array, and its number */
static int number;

static void die(const char *what)
{
	fprintf(stderr, "vm-md: md%d: ", number);
	perror(what);
	exit(1);
}

/* An array appears when its node is opened, so the node cannot be the kernel's. */
static void open_array(const char *minor)
{
	char node[32];

	number = atoi(minor);
	snprintf(node, sizeof node, "/dev/md%d", number);
	mknod(node, S_IFBLK | 0600, makedev(MD_MAJOR, (unsigned)number));
	array = open(node, O_RDWR);
	if (array < 0)
		die(node);
}

static void call(unsigned long request, const char *name, const void *argument)
{
	if (ioctl(array, request, argument) != 0)
		die(name);
}

static dev_t device_of(const char *path)
{
	struct stat st;

	if (stat(path, &st) != 0 || !S_ISBLK(st.st_mode))
		die(path);
	return st.st_rdev;
}

static void add_member(const char *path, int slot, int state)
{
	const dev_t device = device_of(path);
	mdu_disk_info_t disk = {.number = slot,
	                        .major = (int)major(device),
	                        .minor = (int)minor(device),
	                        .raid_disk = slot,
	                        .state = state};

	call(ADD_NEW_DISK, path, &disk);
}

static int level_of(const char *word)
{
	return strcmp(word, "linear") == 0 ? LEVEL_LINEAR : atoi(word);
}

static int layout_of(int level)
{
	switch (level) {
	case 5:
	case 6:
		return 2; /* left-symmetric */
	case 10:
		return 0x102; /* two near copies */
	default:
		return 0;
	}
}

/* LEVEL CHUNK-KIB clean|dirty MEMBER... */
static void create(int argc, char **argv)
{
	const int level = level_of(argv[0]);
	const int places = argc - 3;
	mdu_array_info_t info = {.major_version = 0,
	                         .minor_version = 90,
	                         .level = level,
	                         .raid_disks = places,
	                         .md_minor = number,
	                         .layout = layout_of(level),
	                         .chunk_size = atoi(argv[1]) * 1024};

	if (strcmp(argv[2], "clean") == 0)
		info.state = 1 << MD_SB_CLEAN;
	for (int i = 0; i < places; i++)
		info.nr_disks += strcmp(argv[3 + i], "missing") != 0;
	call(SET_ARRAY_INFO, "SET_ARRAY_INFO", &info);
	for (int i = 0; i < places; i++)
		if (strcmp(argv[3 + i], "missing") != 0)
			add_member(argv[3 + i], i, 1 << MD_DISK_ACTIVE | 1 << MD_DISK_SYNC);
	call(RUN_ARRAY, "RUN_ARRAY", NULL);
}

static void assemble(int argc, char **argv)
{
	const mdu_array_info_t info = {.major_version = 0, .minor_version = 90};

	call(SET_ARRAY_INFO, "SET_ARRAY_INFO", &info);
	for (int i = 0; i < argc; i++)
		add_member(argv[i], 0, 0);
}

/* These take the member's device number for their argument. */
static void change_member(unsigned long request, const char *path)
{
	if (ioctl(array, request, (unsigned long)device_of(path)) != 0)
		die(path);
}

static void info(void)
{
	mdu_array_info_t state;

	memset(&state, 0, sizeof state);
	call(GET_ARRAY_INFO, "GET_ARRAY_INFO", &state);
	printf("%d %d\n", state.active_disks, state.spare_disks);
	for (int i = 0; i < MD_SB_DISKS; i++) {
		mdu_disk_info_t disk = {.number = i};
		call(GET_DISK_INFO, "GET_DISK_INFO", &disk);
		if (disk.major != 0)
			printf("%d %d:%d %d %d\n", i, disk.major, disk.minor, disk.raid_disk, disk.state);
	}
}

static void usage(void)
{
	fputs("usage: vm-md create|assemble|run|stop|fail|add|remove|info MINOR ...\n", stderr);
	exit(2);
}

int main(int argc, char **argv)
{
	static const struct {
		const char *name;
		unsigned long request;
	} changes[] = {{"fail", SET_DISK_FAULTY}, {"add", HOT_ADD_DISK}, {"remove", HOT_REMOVE_DISK}};

	if (argc < 3)
		usage();
	open_array(argv[2]);
	for (size_t i = 0; i < sizeof changes / sizeof changes[0]; i++)
		if (argc == 4 && strcmp(argv[1], changes[i].name) == 0) {
			change_member(changes[i].request, argv[3]);
			return 0;
		}
	if (strcmp(argv[1], "create") == 0 && argc > 6)
		create(argc - 3, argv + 3);
	else if (strcmp(argv[1], "assemble") == 0)
		assemble(argc - 3, argv + 3);
	else if (strcmp(argv[1], "run") == 0)
		call(RUN_ARRAY, "RUN_ARRAY", NULL);
	else if (strcmp(argv[1], "stop") == 0)
		call(STOP_ARRAY, "STOP_ARRAY", NULL);
	else if (strcmp(argv[1], "info") == 0)
		info();
	else
		usage();
	return 0;
}
