// SPDX-License-Identifier: Apache-2.0
// The outside calls of each query, and nothing else: what remains when no line is looked at and no record is
// made. What a query costs beyond its floor is our own work.
#ifndef DISKSCOUT_BENCH_FLOOR_H
#define DISKSCOUT_BENCH_FLOOR_H

void floor_disks();
void floor_partitions();
void floor_cdroms();

#endif
