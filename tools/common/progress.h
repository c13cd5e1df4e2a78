// SPDX-License-Identifier: Apache-2.0
// How far long work is, on a terminal's standard error: one line that is written over and over, and gone at
// the end. Nobody else is told.
#ifndef DISKSCOUT_TOOLS_COMMON_PROGRESS_H
#define DISKSCOUT_TOOLS_COMMON_PROGRESS_H

#include <cstddef>
#include <string>
#include <string_view>

class progress_t
{
public:
	progress_t(std::string_view what, std::size_t count);
	~progress_t();
	progress_t(const progress_t &) = delete;
	progress_t &operator=(const progress_t &) = delete;

	// The work on the next one begins.
	void next(std::string_view name);

private:
	void show(const std::string &line);

	std::string what_;
	std::size_t count_, at_ = 0, shown_ = 0;
	bool is_shown_;
};

#endif
