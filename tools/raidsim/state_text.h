// SPDX-License-Identifier: Apache-2.0
// The state as text.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_STATE_TEXT_H
#define DISKSCOUT_TOOLS_RAIDSIM_STATE_TEXT_H

#include "state.h"

#include <stdexcept>
#include <string>

// The text cannot be understood, or its file not be read or written.
struct state_error_t : std::runtime_error {
	using std::runtime_error::runtime_error;
};

std::string state_as_text(state_t all);
state_t state_from_text(const std::string &text);

#endif
