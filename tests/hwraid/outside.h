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

// Made anew for every test.
extern outside_t outside;

#endif
