// SPDX-License-Identifier: Apache-2.0
// Kinds that have something in common.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_KIND_SETS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_KIND_SETS_H

#include "kinds.h"

#include <string>

using kind_test_t = bool (*)(const kind_t *k);

bool is_any(const kind_t *k);
bool is_old(const kind_t *k);     // format 1 knows it
bool is_block(const kind_t *k);   // told by the block plug-in ...
bool is_classic(const kind_t *k); // ... and by the classic one
bool is_of_host(const kind_t *k);
bool is_of_raid(const kind_t *k);
bool is_of_controller(const kind_t *k);
bool is_tree(const kind_t *k);

// "disks, partitions"; old: as format 1 writes them.
std::string words_of(kind_test_t test, bool old = false);

bool has(const kinds_t &kinds, kind_test_t test);

#endif
