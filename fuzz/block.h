// SPDX-License-Identifier: Apache-2.0
// What every text promises that diskscout-block.so hands out.
#ifndef DISKSCOUT_FUZZ_BLOCK_H
#define DISKSCOUT_FUZZ_BLOCK_H

// Valid UTF-8 without control characters, backslashes only in "\xHH", and not empty; or null for absent.
bool is_shown(const char *text);

#endif
