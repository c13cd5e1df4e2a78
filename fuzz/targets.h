// SPDX-License-Identifier: Apache-2.0
// What the fuzzer is let loose on: readers of the system's tables, parsers of the controller tool's output,
// the command line and the console, each tried on a file of any content. It has to end with a code that its
// header names and to hand out records that keep their promises. The fuzzer asks here, and so does the test
// of what the fuzzer has found.
#ifndef DISKSCOUT_FUZZ_TARGETS_H
#define DISKSCOUT_FUZZ_TARGETS_H

#include <ostream>
#include <string>
#include <vector>

struct Target {
	const char *name;
	// Of the time that the fuzzer has: what knows many words needs more of it.
	int share;
	// Gives it the file, looks at everything that it hands out and releases all. Returns what is wrong;
	// empty: nothing.
	std::string (*check)(const char *path);
};

// For a test's name in a report.
inline void PrintTo(const Target &target, std::ostream *stream)
{
	*stream << target.name;
}

extern const std::vector<Target> TARGETS;

// Null for a name that is none.
const Target *find_target(const std::string &name);

// ---- answers.cpp: the controller tool's output ----

std::string check_controllers(const char *path);
std::string check_containers(const char *path);
std::string check_deletion(const char *path);
std::string check_failover(const char *path);
std::string check_spare(const char *path);
std::string check_device(const char *path);
std::string check_creation(const char *path);
std::string check_disks(const char *path);
std::string check_initialisation(const char *path);
std::string check_defects(const char *path);
std::string check_spaces(const char *path);
std::string check_partitions(const char *path);
std::string check_tasks(const char *path);
// A configuration that names no tool: every operation fails at once.
void use_no_tool();

// ---- text_helpers.cpp ----

// The first two lines of the file are what is looked for and what takes its place, the third and all behind
// it the text.
std::string check_text(const char *path);

// ---- tables.cpp: the system's tables ----

std::string check_mdstat(const char *path);
std::string check_procblk(const char *path);
// The file's first line is the drive's media file, the second its model file, the rest what it identifies as.
std::string check_procide(const char *path);
std::string check_procscsi(const char *path);
std::string check_mtab(const char *path);
std::string check_raidtab(const char *path);

// ---- chain.cpp ----

// The file is a disk of small sectors, of each the 64 bytes of the table and the two of its signature.
std::string check_chain(const char *path);

// ---- block.cpp: what today's hosts tell ----

// The file is one page of vital product data.
std::string check_vpd(const char *path);
// The file is what udev's database says of a device.
std::string check_udev(const char *path);

// ---- block_mounts.cpp ----

// The file is the table of mounts; from "Filename" on, that of swap areas.
std::string check_mounts(const char *path);

// ---- block_arrays.cpp ----

// Each line is an attribute of an array, in the order of the table in the source.
std::string check_arrays(const char *path);

// ---- image.cpp ----

// The file is a disk in pieces of 128 bytes: its size in eight bytes, little endian; then of each piece that
// is not zero its number in four, negative from the end, and the piece.
std::string check_image(const char *path);

// ---- commands.cpp ----

// The first line is the command, its words parted by blanks; the rest is its input.
std::string check_commands(const char *path);
// The file is what somebody types.
std::string check_console(const char *path);

#endif
