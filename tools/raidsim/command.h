// SPDX-License-Identifier: Apache-2.0
// A line of a script, taken apart.
//
//   container create new_mirror /label="data" /quick_init=true ((0,0,0),1024M) (0,1,0)
//   words                       switches                       operands
#ifndef DISKSCOUT_TOOLS_RAIDSIM_COMMAND_H
#define DISKSCOUT_TOOLS_RAIDSIM_COMMAND_H

#include "state.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

// The line that the tool answers when it does not do what was asked.
struct refusal_t : std::runtime_error {
	using std::runtime_error::runtime_error;
};

refusal_t command_error(const std::string &text);
refusal_t parsing_error(const std::string &text);

struct disk_operand_t {
	address_t at;
	std::optional<std::int64_t> size_kb;
};

// One word of a line. Quotation marks and parentheses hold blanks together.
struct token_t {
	std::string text;
	bool is_switch() const { return text.front() == '/'; }
};

std::vector<token_t> tokens_of(std::string_view line);

class command_t
{
public:
	// `name` is the table's; `rest` what stands behind it. Switches that the command does not know are
	// refused. `known` names them between blanks.
	command_t(std::string_view name, std::string_view known, const std::vector<token_t> &rest);

	// As the tool repeats it: words in lower case, truth values in upper case, one blank between parts.
	const std::string &echo() const { return echo_; }

	bool truth(const std::string &name) const;
	std::optional<std::string> text(const std::string &name) const;

	const std::vector<std::string> &operands() const { return operands_; }
	void expect_operands(std::size_t least, std::size_t most) const;
	std::string name_at(std::size_t index) const;
	int number_at(std::size_t index) const;
	disk_operand_t disk_at(std::size_t index) const;
	// A disk without a size.
	address_t address_at(std::size_t index) const;

private:
	struct setting_t {
		std::string name;
		std::string value;
	};
	void add_switch(const std::string &part, std::string_view known);

	std::string echo_;
	std::vector<setting_t> settings_;
	std::vector<std::string> operands_;
};

// "64K", "1024M", "1G": kilobytes.
std::optional<std::int64_t> kilobytes_of(std::string_view text);

#endif
