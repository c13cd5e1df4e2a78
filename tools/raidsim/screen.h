// SPDX-License-Identifier: Apache-2.0
// What the tool paints: lines, prompts, pager prompts and, on request, a terminal's escape sequences.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_SCREEN_H
#define DISKSCOUT_TOOLS_RAIDSIM_SCREEN_H

#include "faults.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The script. The pager takes single keys out of it, blanks most of all.
class input_t
{
public:
	explicit input_t(std::string text) : text_(std::move(text)) {}

	// False at the end.
	bool next_line(std::string &line);
	// '\0' at the end.
	char next_key();

private:
	std::string text_;
	std::size_t at_ = 0;
};

class screen_t
{
public:
	screen_t(const faults_t &wanted, input_t &keys) : wanted_(wanted), keys_(keys) {}

	void banner();
	void prompt(const std::string &name);
	// Ends the prompt's line and repeats the command.
	void echo(const std::string &text);
	// The lines of an answer, through the pager, and the blank line behind them.
	void answer(const std::vector<std::string> &lines);
	void end_line();

	const std::string &text() const { return text_; }

private:
	void line(std::string_view text);
	void status_line();
	// How many lines to go on with; 0: quit.
	std::int64_t ask();

	const faults_t &wanted_;
	input_t &keys_;
	std::string text_;
};

#endif
