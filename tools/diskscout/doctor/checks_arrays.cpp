// SPDX-License-Identifier: Apache-2.0
// Arrays that the classic reader of /proc/mdstat leaves out, or tells as something else:
//
//   md0 : active (auto-read-only) raid6 sdb1[1] sda1[0](F)
#include "checks_machine.h"

#include "kernel_lines.h"
#include "machine.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <sstream>

static constexpr std::size_t ARRAYS = 16;
static constexpr unsigned PLACES = 8;
static constexpr std::string_view DIGITS = "0123456789";

static bool begins(std::string_view text, std::string_view with)
{
	return text.substr(0, with.size()) == with;
}

static bool is_told_level(std::string_view word)
{
	static constexpr std::string_view LEVELS[] = {"linear", "raid0", "raid1", "raid5"};
	return std::find(std::begin(LEVELS), std::end(LEVELS), word) != std::end(LEVELS);
}

// Its number alone tells a device of any driver: "[dev 08:11]".
static bool is_told_member(std::string_view name)
{
	const std::string_view stem = name.substr(0, name.find_last_not_of(DIGITS) + 1);
	return stem == "md" || classic_name_of(stem) != classic_name_t::NONE;
}

static std::string member_reason(const std::string &word)
{
	const std::size_t bracket = word.find('[');
	if (bracket == 0 || bracket == word.npos)
		return "";
	const std::string name = word.substr(0, bracket);
	if (!is_told_member(name))
		return fmt::format("has the member {}, whose name the classic readers do not know", name);
	unsigned place = 0;
	std::from_chars(word.data() + bracket + 1, word.data() + word.size(), place);
	return place < PLACES ? "" : fmt::format("has a member in place {}, beyond {}", place, PLACES - 1);
}

// The words behind the colon. Why it is not told as it is; empty: it is.
static std::string array_reason(std::istringstream &words)
{
	std::string state, word;
	words >> state >> word;
	if (begins(word, "("))
		return fmt::format("is {}", word.substr(1, word.find(')') - 1));
	if (begins(word, "raid10"))
		return "is of level raid10, and told as of level 1";
	// Of an array that is not running the members may follow at once.
	if (word.find('[') == word.npos && !is_told_level(word))
		return fmt::format("is of level {}", word);
	do {
		std::string reason = member_reason(word);
		if (!reason.empty())
			return reason;
	} while (words >> word);
	return "";
}

findings_t look_at_arrays(const patient_t &at)
{
	const machine_t machine = machine_of(at.from);
	const verdict_t verdict = judged(machine, verdict_t::WARNING);
	findings_t findings;
	lines_t lines("/proc/mdstat");
	std::string line;
	std::size_t arrays = 0;
	while (lines.next(&line)) {
		if (!begins(line, "md"))
			continue;
		std::istringstream words(line);
		std::string name, colon;
		words >> name >> colon;
		// Those that are left out take no place.
		std::string reason = array_reason(words);
		if (reason.empty() && ++arrays > ARRAYS)
			reason = fmt::format("stands behind the {}th array", ARRAYS);
		if (!reason.empty())
			findings.push_back({verdict, fmt::format("{} {}", name, reason)});
	}
	return findings;
}
