// SPDX-License-Identifier: Apache-2.0
// Outside calls of the library as a test wants them. The definitions in this room's program stand in for the
// C library's; what a test does not touch is handed on.
#ifndef DISKSCOUT_TESTS_HWRAID_OUTSIDE_H
#define DISKSCOUT_TESTS_HWRAID_OUTSIDE_H

#include <functional>
#include <string>
#include <vector>

struct outside_t {
	bool setenv_fails = false;
	bool fdopen_fails = false;
	int failing_creation = 0; // the nth file that is made exclusively cannot be, from 1
	// 1 and more: names of files are made of this digit, then of the next: "11111111-1111-…".
	int first_name = 0;
	// Called after each look at a file that is there: time enough for a stranger.
	std::function<void(const std::string &path)> looked_at;
	std::vector<std::string> commands; // what a shell was asked to run
};

extern outside_t outside;

// A test that touches them owns one of these: afterwards all is as it was.
struct own_outside_t {
	own_outside_t() { outside = {}; }
	~own_outside_t() { outside = {}; }
	own_outside_t(const own_outside_t &) = delete;
	own_outside_t &operator=(const own_outside_t &) = delete;
};

#endif
