// SPDX-License-Identifier: Apache-2.0
// How far long work is.
#include "progress.h"

#include "text.h"

#include <algorithm>
#include <fmt/format.h>
#include <unistd.h>

// What comes to its end with the first one needs none.
progress_t::progress_t(std::string_view what, std::size_t count)
    : what_(what), count_(count), is_shown_(count > 1 && isatty(STDERR_FILENO) == 1)
{
}

progress_t::~progress_t()
{
	show("");
	show("");
}

// Blanks lie over what was longer: every terminal knows them.
void progress_t::show(const std::string &line)
{
	if (!is_shown_)
		return;
	const std::string text = fmt::format("\r{:<{}}", line, std::max(line.size(), shown_));
	shown_ = line.size();
	// It does not matter to anybody whether it arrives.
	if (write(STDERR_FILENO, text.data(), text.size()) < 0)
		is_shown_ = false;
}

void progress_t::next(std::string_view name)
{
	at_++;
	show(printable(fmt::format("{}: {} of {}, {}", what_, at_, count_, name)));
}
