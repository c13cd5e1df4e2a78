// The state's one text file.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_STATE_FILE_H
#define DISKSCOUT_TOOLS_RAIDSIM_STATE_FILE_H

#include "state.h"

#include <stdexcept>
#include <string>

// The file cannot be read, understood or written.
struct state_error : std::runtime_error {
	using std::runtime_error::runtime_error;
};

std::string state_as_text(state all);
state state_from_text(const std::string &text);

// A file that does not exist is made from the sample first.
state load_state(const std::string &path);

// Replaces the file at once or not at all; nothing is written when the text stays the same.
void save_state(const std::string &path, const state &all);

// The text that a new file begins with.
extern const char sample_state[];

#endif
