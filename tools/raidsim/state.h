// SPDX-License-Identifier: Apache-2.0
// What the simulated controllers hold between two runs.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_STATE_H
#define DISKSCOUT_TOOLS_RAIDSIM_STATE_H

#include <cstdint>
#include <string>
#include <vector>

// Where a disk hangs: channel, SCSI ID and LUN.
struct address_t {
	int channel = 0;
	int id = 0;
	int lun = 0;
};

inline bool operator==(const address_t &a, const address_t &b)
{
	return a.channel == b.channel && a.id == b.id && a.lun == b.lun;
}

// A part of a disk that a container uses.
struct piece_t {
	address_t at;
	std::int64_t offset_kb = 0;
	std::int64_t size_kb = 0;
	bool rebuild = false; // being filled from the other members
};

struct container_t {
	int number = 0;
	std::string type; // "Stripe", "Mirror", "RAID-5", "Volume" or "Reconf"
	std::int64_t size_kb = 0;
	int stripe_kb = 0; // 0: the type has none
	std::string usage;
	std::string device; // the operating system's name, empty for a member of another container
	std::string label;
	int parent = -1; // the multi-level container it is a member of, -1: none
	bool data = false;
	std::vector<piece_t> pieces; // none: a multi-level container
	std::vector<address_t> spares;
};

struct disk_t {
	address_t at;
	std::string type; // "Disk", "Processor", ...
	bool removable = false;
	std::string vendor;
	std::string product;
	std::string revision;
	std::int64_t blocks = 0;
	int bytes_per_block = 512;
	std::string usage; // "Initialized", "Not Initialized", ...
	bool shared = false;
	int rate = 0;
	int primary_defects = 0;
	int grown_defects = 0;
	bool bad_status = false; // does not tell its defects
};

struct task_t {
	int id = 0;
	std::string function; // "Bld/Vfy", "Rebuild", ...
	int done = 0;         // tenths of a percent
	int step = 0;         // tenths of a percent that a run adds
	int container = 0;
	std::string state; // "RUN" or another state word; only RUN moves on
};

struct controller_t {
	std::string name;
	std::string type;
	std::string availability;
	std::string clustering;
	std::string opens; // "yes", "busy" or "wrong-type"
	int channels = 1;
	int next_task = 101;
	std::vector<disk_t> disks;
	std::vector<container_t> containers;
	std::vector<task_t> tasks;
};

struct state_t {
	std::vector<controller_t> controllers;
};

container_t *find_container(controller_t &where, int number);

// The members of a multi-level container, in the order of their numbers.
std::vector<const container_t *> members_of(const controller_t &where, int parent);

// Removes the container with its members, pieces, spares and tasks.
void remove_container(controller_t &where, int number);

// Lets the tasks of every controller do one step; a finished one is shown once more and then gone.
void let_time_pass(state_t &all);

#endif
