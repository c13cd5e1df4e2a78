// SPDX-License-Identifier: Apache-2.0
// What a piece of work takes beyond its floor.
#ifndef DISKSCOUT_BENCH_PAIRS_H
#define DISKSCOUT_BENCH_PAIRS_H

#include <benchmark/benchmark.h>

// Processor time of the calling thread.
double cpu_microseconds(void (*run)());

// Work and floor in turn, so that both meet the machine in the same mood: "own_cpu_us" is the median of what
// each run of the work took beyond the floor behind it.
void compare(benchmark::State &state, void (*work)(), void (*floor)());

#endif
