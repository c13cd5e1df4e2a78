// SPDX-License-Identifier: Apache-2.0
// Which word somebody meant who mistyped one.
#include "closest_word.h"

#include "text.h"

#include <algorithm>
#include <fmt/format.h>

std::size_t edit_distance(std::string_view one, std::string_view other)
{
	// Rows of the table of all beginnings of both words; exchanging two neighbours looks two rows back.
	const std::size_t width = other.size() + 1;
	std::vector<std::size_t> before(width), above(width), row(width);
	for (std::size_t i = 0; i < width; i++)
		above[i] = i;
	for (std::size_t i = 1; i <= one.size(); i++) {
		row[0] = i;
		for (std::size_t j = 1; j < width; j++) {
			const bool is_same = one[i - 1] == other[j - 1];
			row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (is_same ? 0 : 1)});
			if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
				row[j] = std::min(row[j], before[j - 2] + 1);
		}
		std::swap(before, above);
		std::swap(above, row);
	}
	return above.back();
}

// One letter is near to every word of two. From two letters on one edit is a mistake, from five on two are.
static std::size_t most_edits(std::string_view mistyped)
{
	return std::min<std::size_t>(2, (mistyped.size() + 1) / 3);
}

std::string suggestion(std::string_view mistyped, const std::vector<std::string_view> &words,
                       std::string_view before)
{
	// Much longer ones are no words of ours, and comparing takes its time.
	constexpr std::size_t LONGEST = 64;
	if (mistyped.size() > LONGEST)
		return "";
	const std::string small = in_small_letters(mistyped);
	std::string_view closest;
	std::size_t bound = most_edits(mistyped) + 1;
	for (const std::string_view word : words) {
		const std::size_t distance = edit_distance(small, word);
		if (distance < bound) {
			closest = word;
			bound = distance;
		}
	}
	return closest.empty() ? "" : fmt::format("; did you mean \"{}{}\"?", before, closest);
}
