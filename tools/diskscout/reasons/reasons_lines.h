// SPDX-License-Identifier: Apache-2.0
// Reasons that many devices share, as one line.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_REASONS_LINES_H
#define DISKSCOUT_TOOLS_DISKSCOUT_REASONS_LINES_H

#include "messages.h"

#include <map>
#include <string>
#include <tuple>
#include <vector>

// What keeps a device out of a list, or is wrong with its row.
struct reason_t {
	severity_t severity;
	code_t code;
	std::string text;     // behind "sda, sdb: "
	bool of_node = false; // the lines name nodes: it is the node that cannot be used
	detail_t detail = detail_t::NONE;
};

// "sda, sdb"; of long lists the first eight: "sda, ..., sdh and 992 more".
std::string names_in_short(const std::vector<std::string> &names);

class reason_lines_t
{
public:
	explicit reason_lines_t(const kind_t &kind) : kind_(&kind) {}

	void add(const std::string &name, const reason_t &reason);
	messages_t messages() const; // in the order in which their reasons came first

private:
	struct line_t {
		reason_t reason;
		std::vector<std::string> names;
	};

	const kind_t *kind_;
	std::vector<line_t> lines_;
	std::map<std::tuple<code_t, std::string>, std::size_t> known_;
};

#endif
