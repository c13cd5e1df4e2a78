// SPDX-License-Identifier: Apache-2.0
// What a worker tells, as it goes through the pipe: frames.
#ifndef DISKSCOUT_TOOLS_COMMON_WORKER_FRAMES_H
#define DISKSCOUT_TOOLS_COMMON_WORKER_FRAMES_H

#include <string>
#include <string_view>
#include <vector>

struct worked_t;

struct frames_t {
	std::string stage; // the last one
	bool has_result = false;
	std::string failure;
};

// Of what was received; where the result is comes into `worked`. A frame that was cut is none.
frames_t read_frames(worked_t &worked, std::string_view first_stage);

#endif
