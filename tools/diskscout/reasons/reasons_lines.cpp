// SPDX-License-Identifier: Apache-2.0
// Reasons that many devices share, as one line.
#include "reasons_lines.h"

#include "text.h"

#include <fmt/format.h>

static constexpr std::size_t NAMES_SHOWN = 8;

std::string names_in_short(const std::vector<std::string> &names)
{
	std::string text;
	for (std::size_t i = 0; i < names.size() && i < NAMES_SHOWN; i++)
		text += (i ? ", " : "") + printable(names[i]);
	if (names.size() > NAMES_SHOWN)
		text += fmt::format(" and {} more", names.size() - NAMES_SHOWN);
	return text;
}

void reason_lines_t::add(const std::string &name, const reason_t &reason)
{
	const auto [known, is_new] = known_.try_emplace({reason.code, reason.text}, lines_.size());
	if (is_new)
		lines_.push_back({reason, {}});
	lines_[known->second].names.push_back(reason.of_node ? "/dev/" + name : name);
}

messages_t reason_lines_t::messages() const
{
	messages_t result;
	for (const line_t &line : lines_) {
		result.push_back(
			{line.reason.severity, kind_, line.reason.code,
		         fmt::format("{}: {}", names_in_short(line.names), printable(line.reason.text)),
		         line.reason.detail});
	}
	return result;
}
