// SPDX-License-Identifier: Apache-2.0
// What the tool paints.
#include "screen.h"

#include <algorithm>
#include <limits>

static const char PAGER_PROMPT[] =
	"( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";
static const char STATUS_TEXT[] = "Stat:OK!Task:101,Func:MCR Ctr:0,State:DNE 100.0%";
static const std::size_t FLOOD_SIZE = 0x100000;
static const std::size_t STATUS_INTERVAL = 4;

bool input_t::next_line(std::string &line)
{
	if (at_ >= text_.size())
		return false;
	const std::size_t end = std::min(text_.find('\n', at_), text_.size());
	line = text_.substr(at_, end - at_);
	at_ = end + 1;
	return true;
}

char input_t::next_key()
{
	return at_ < text_.size() ? text_[at_++] : '\0';
}

void screen_t::end_line()
{
	text_ += wanted_.terminal ? "\r\n" : "\n";
}

void screen_t::line(std::string_view text)
{
	text_ += text;
	end_line();
}

void screen_t::banner()
{
	if (wanted_.terminal)
		text_ += "\033[H\033[2J";
	line("EXAMPLE RAID controller command line interface");
	line("Simulated controllers");
	// Plain words, so that no filter removes them.
	while (wanted_.flood && text_.size() <= FLOOD_SIZE)
		line("A controller has reported an event that nobody has asked for.");
	line("");
}

void screen_t::prompt(const std::string &name)
{
	if (wanted_.terminal)
		text_ += "\033[24;1H";
	text_ += name + ">";
}

void screen_t::status_line()
{
	if (!wanted_.status)
		return;
	// The terminal's cursor goes to the last line and comes back.
	if (wanted_.terminal)
		text_ += "\0337\033[24;1H";
	text_ += STATUS_TEXT;
	if (wanted_.terminal)
		text_ += "\0338";
	end_line();
}

void screen_t::echo(const std::string &text)
{
	end_line();
	line("Executing: " + text);
}

std::int64_t screen_t::ask()
{
	text_ += PAGER_PROMPT;
	while (const char key = keys_.next_key()) {
		if (key == ' ')
			return wanted_.pager;
		if (key == '\n')
			return 1;
		if (key == 'c' || key == 'C')
			break;
		if (key == 'q' || key == 'Q')
			return 0;
	}
	// Nobody is there to ask any more.
	return std::numeric_limits<std::int64_t>::max();
}

void screen_t::answer(const std::vector<std::string> &lines)
{
	std::int64_t left = wanted_.pager > 0 ? wanted_.pager : std::numeric_limits<std::int64_t>::max();
	for (std::size_t i = 0; i < lines.size(); i++) {
		if (left == 0)
			left = ask();
		if (left == 0) {
			end_line();
			break;
		}
		// Between rows too: a status line comes when it likes.
		if (i % STATUS_INTERVAL == STATUS_INTERVAL - 1)
			status_line();
		line(lines[i]);
		left--;
	}
	line("");
}
