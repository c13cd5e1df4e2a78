// SPDX-License-Identifier: Apache-2.0
// The three queries on a captured host with 16 disks and 32 mounts, each beside its floor.
#include "diskscout.h"
#include "floor.h"
#include "pairs.h"

#include "replay/replay.h"

#include <stdio.h>
#include <stdlib.h>
#include <string>

static void query(UINT code)
{
	IPMICOMMAND cmd = {};
	void *head = nullptr;
	int count = 0;
	cmd.nCommand = code;
	if (GetItemInfo(&cmd, &head, &count) != 0 || count == 0)
		abort();
	cmd.nCommand = code + 1;
	SetItemInfo(&cmd, &head);
}

static void query_disks()
{
	query(CMD_GET_DISKS);
}

static void query_partitions()
{
	query(CMD_GET_PARTITIONS);
}

static void query_cdroms()
{
	query(CMD_GET_CDROMS);
}

static const struct {
	const char *name;
	void (*query)();
	void (*floor)();
} ROWS[] = {
	{"disks", query_disks, floor_disks},
	{"partitions", query_partitions, floor_partitions},
	{"cdroms", query_cdroms, floor_cdroms},
};

static long calls_of(void (*run)())
{
	replay_count_calls();
	run();
	return replay_calls();
}

static void repeat(benchmark::State &state, void (*run)())
{
	while (state.KeepRunning())
		run();
	state.counters["calls"] = static_cast<double>(calls_of(run));
}

static void register_row(const std::string &name, const char *side, void (*run)())
{
	benchmark::RegisterBenchmark((name + "/" + side).c_str(), repeat, run)->Unit(benchmark::kMicrosecond);
}

int main(int argc, char **argv)
{
	replay_set_child_library(REPLAY_LIBRARY);
	if (replay_use(BENCH_HOST) != 0)
		return 2;
	for (const auto &row : ROWS) {
		// A floor that makes other calls than its query would measure nothing.
		const long floor = calls_of(row.floor);
		const long own = calls_of(row.query);
		if (floor != own) {
			fprintf(stderr, "%s: %ld outside calls, but %ld in the floor\n", row.name, own,
			        floor);
			return 1;
		}
		register_row(row.name, "query", row.query);
		register_row(row.name, "floor", row.floor);
		benchmark::RegisterBenchmark((std::string(row.name) + "/own").c_str(), compare, row.query,
		                             row.floor);
	}
	benchmark::Initialize(&argc, argv);
	if (benchmark::ReportUnrecognizedArguments(argc, argv))
		return 2;
	benchmark::RunSpecifiedBenchmarks();
	benchmark::Shutdown();
	return 0;
}
