// SPDX-License-Identifier: Apache-2.0
// A row for programs.
#include "pairs.h"

#include "cell.h"
#include "utf8.h"

#include <fmt/format.h>

static std::string in_capitals(std::string_view key)
{
	std::string capitals(key);
	for (char &letter : capitals)
		letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
	return capitals;
}

static bool stands_for_itself(const utf8_front_t &front, std::string_view bytes)
{
	static constexpr std::string_view OF_SHELLS = "\"\\$`";
	return front.is_character && !is_control(bytes) && OF_SHELLS.find(bytes[0]) == std::string_view::npos;
}

static std::string escaped(std::string_view text)
{
	std::string result;
	while (!text.empty()) {
		const utf8_front_t front = utf8_front(text);
		const std::string_view bytes = text.substr(0, front.length);
		text.remove_prefix(front.length);
		if (stands_for_itself(front, bytes)) {
			result += bytes;
			continue;
		}
		for (const char byte : bytes)
			result += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
	}
	return result;
}

std::string pairs_line(const std::vector<const field_t *> &columns, const row_t &row)
{
	std::string line;
	for (const field_t *column : columns) {
		line += line.empty() ? "" : " ";
		line += fmt::format("{}=\"{}\"", in_capitals(column->key),
		                    escaped(raw_cell_of(*column, row)));
	}
	return line + "\n";
}
