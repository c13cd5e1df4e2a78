// SPDX-License-Identifier: Apache-2.0
// What the tests against the simulated controller tool share: the lists of aac0 as text, the ways in which
// the tool paints its answers, and the rows that are expected of the state in simulator.h.
#ifndef DISKSCOUT_TESTS_RAIDSIM_SIMULATED_H
#define DISKSCOUT_TESTS_RAIDSIM_SIMULATED_H

#include "simulator.h"

#include "hwraid/aacraid/aac_hardraid.h"

#include <initializer_list>
#include <string>

extern const char *const AAC0;
extern const int SPARE;

int disk_at(int channel, int id);
std::string joined(std::initializer_list<long long> fields);

// ---- the lists as text: the result, then a record a line ----

std::string containers(const char *controller = AAC0);
std::string controllers();
std::string disks();
std::string space(int at);
std::string partitions();
std::string described(const aac_task *head);
std::string tasks();
std::string defects(int at);

// Two mirrors of equal size as records of the state file, by their numbers: fit for a stripe.
std::string pair_of(int first, int second);

// ---- every way of painting ----

struct way_t {
	const char *name;
	const char *painting;
	const char *plain_filter; // null: the filter script
};

extern const way_t WAYS[6];

void PrintTo(const way_t &way, std::ostream *out);

class Simulator : public SimulatorTest, public testing::WithParamInterface<way_t>
{
protected:
	void SetUp() override
	{
		SimulatorTest::SetUp();
		if (GetParam().plain_filter)
			filter(GetParam().plain_filter);
		paint(GetParam().painting,
		      GetParam().plain_filter ? (site_ / "filter").string() : FILTER_PROGRAM);
	}
	void expect_state(const state_t &state) { EXPECT_EQ(state_now(), text_of(state)); }
};

// number | members counted | members | type | MB | stripe | usage | hot spare | label
extern const std::string SYSTEM_ROW;
extern const std::string VOLUME_ROW;
extern const std::string BIG_ROWS;
extern const std::string FIVE_ROW;
extern const std::string QUARTER_ROW;

#endif
