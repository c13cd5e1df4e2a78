// SPDX-License-Identifier: Apache-2.0
// The hardware side: how fast long answers of the tool are read, and what a whole operation costs beyond the
// shells that it has to start.
#include "listings.h"
#include "operation.h"
#include "pairs.h"

#include <algorithm>
#include <filesystem>
#include <stdio.h>
#include <unistd.h>

namespace fs = std::filesystem;

// The largest answer that is read.
static constexpr size_t LARGE = 1U << 20;

static void parse(benchmark::State &state, const Listing *listing)
{
	use_no_tool();
	const ListingFile file(*listing, static_cast<size_t>(state.range(0)));
	while (state.KeepRunning())
		file.parse();
	state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(file.size()));
}

static void repeat(benchmark::State &state, void (*run)())
{
	use_plain_tool();
	while (state.KeepRunning())
		run();
}

static void compare_operation(benchmark::State &state)
{
	use_plain_tool();
	compare(state, operation, operation_floor);
}

static const ListingFile *timed_file;

static double parsing_time(const Listing &listing, size_t size)
{
	const ListingFile file(listing, size);
	timed_file = &file;
	double best = 1e9;
	for (int i = 0; i < 3; i++)
		best = std::min(best, cpu_microseconds([] { timed_file->parse(); }));
	return best;
}

// Sixteen times the input takes sixteen times as long, or 256 times when the time grows with the square: the
// limit lies between, far enough from both for any machine.
static bool is_linear(const Listing &listing)
{
	use_no_tool();
	const double growth = parsing_time(listing, LARGE) / parsing_time(listing, LARGE / 16);
	if (growth < 64)
		return true;
	fprintf(stderr, "%s: 16 times the input takes %.0f times as long\n", listing.name, growth);
	return false;
}

static bool is_fair()
{
	use_plain_tool();
	const int own = shells_of(operation);
	const int floor = shells_of(operation_floor);
	if (own == floor)
		return true;
	fprintf(stderr, "an operation starts %d shells, but its floor %d\n", own, floor);
	return false;
}

static void register_all()
{
	for (const Listing &listing : LISTINGS) {
		benchmark::RegisterBenchmark(listing.name, parse, &listing)
			->Arg(LARGE / 2)
			->Arg(LARGE)
			->Unit(benchmark::kMillisecond);
	}
	benchmark::RegisterBenchmark("operation/whole", repeat, operation)->Unit(benchmark::kMicrosecond);
	benchmark::RegisterBenchmark("operation/floor", repeat, operation_floor)
		->Unit(benchmark::kMicrosecond);
	benchmark::RegisterBenchmark("operation/own", compare_operation);
}

static int run(int argc, char **argv)
{
	if (!is_fair() || !std::all_of(LISTINGS.begin(), LISTINGS.end(), is_linear))
		return 1;
	register_all();
	benchmark::Initialize(&argc, argv);
	if (benchmark::ReportUnrecognizedArguments(argc, argv))
		return 2;
	benchmark::RunSpecifiedBenchmarks();
	benchmark::Shutdown();
	return 0;
}

int main(int argc, char **argv)
{
	// Operations make their files in the working directory.
	const fs::path directory =
		fs::temp_directory_path() / ("diskscout-bench-" + std::to_string(getpid()));
	fs::create_directory(directory);
	fs::current_path(directory);
	const int result = run(argc, argv);
	fs::current_path("/");
	fs::remove_all(directory);
	return result;
}
