// SPDX-License-Identifier: Apache-2.0
// The hardware side against the simulated controller tool, through the filter script, from a state that is
// known in every number.
//
// The controller aac0 has disks of 16 GB and 64 KB, of which the first 64 KB are the controller's own:
//
//   0:00:0 0:01:0  the mirror 0 of 10 GB, "system", with data and the hot spare 0:04:0
//   0:02:0 0:03:0  the mirror 24 of 2 GB, a member of the stripe 2, "big data set", with data
//   0:05:0         not initialised
//   0:06:0         no disk but an enclosure's processor
//   0:07:0         all four pieces that a disk may have, of the volume 10, "quarter", without data
//   1:00:0 1:01:0  the mirror 25, the other member of stripe 2, behind it pieces of the RAID-5 set 3
//   1:02:0         1 GB free, then the last piece of the RAID-5 set 3, "five", without data
//   1:03:0         free
//   1:10:0         the volume 1 of 1.5 GB, without a label, with data; tells no defects
//
// aac1 can only be read, aac2 is held by another application, aac3 is of the wrong type.
#ifndef DISKSCOUT_TESTS_RAIDSIM_SIMULATOR_H
#define DISKSCOUT_TESTS_RAIDSIM_SIMULATOR_H

#include "site.h"

// The containers of aac0 as records of the state file, spelled as the simulator spells them.
extern const std::string SYSTEM_MIRROR;
extern const std::string VOLUME;
extern const std::string BIG_STRIPE; // with its members
extern const std::string FIVE;
extern const std::string QUARTER;
extern const std::string ALL_CONTAINERS;
extern const std::string ALL_TASKS; // two, suspended: they stay as they are

// What a test changes of aac0, or expects to be changed.
struct state_t {
	std::string containers = ALL_CONTAINERS;
	std::string tasks = ALL_TASKS;
	std::string usage_of_0_05 = "\"Not Initialized\"";
	std::string vendor_of_0_04 = "ACME";
	int next_task = 107;
};

std::string text_of(const state_t &state);

// A piece or a container as records of the state file.
std::string piece(const std::string &at, long long offset_kb, long long size_kb);
std::string container(int number, const std::string &type, long long size_kb, int stripe_kb,
                      const std::string &device, const std::string &label, const std::string &pieces);

// Afterwards the file of the state stands alone: the simulator has left nothing beside it, either.
class SimulatorTest : public SiteTest
{
protected:
	void SetUp() override;
	void TearDown() override;

	void use_state(const state_t &state);
	// Words of RAIDSIM_FAULT, in addition to those of the way the tool paints.
	void fault(const std::string &words);
	// The way the tool paints, and the filter: a program's path.
	void paint(const std::string &words, const std::string &filter_program);
	std::string state_now() const;

private:
	std::string painting_;
};

#endif
