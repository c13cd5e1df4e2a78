// What ends the program with status 2: the caller asked for something that cannot be done.
#ifndef DISKSCOUT_TOOLS_COMMON_USAGE_ERROR_H
#define DISKSCOUT_TOOLS_COMMON_USAGE_ERROR_H

#include <stdexcept>

// what() is one line without the program's name.
struct usage_error_t : std::runtime_error {
	using std::runtime_error::runtime_error;
};

#endif
