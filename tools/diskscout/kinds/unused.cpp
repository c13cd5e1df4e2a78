// SPDX-License-Identifier: Apache-2.0
// Devices that wait for somebody to use them.
#include "unused.h"

#include "diskscout_block.h"
#include "member.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

bool is_unused(std::string_view kind, long long size)
{
	static constexpr std::string_view MADE_IN_ADVANCE[] = {"loop", "nbd", "ram", "zram"};
	return size == 0 && std::find(std::begin(MADE_IN_ADVANCE), std::end(MADE_IN_ADVANCE), kind) !=
	                            std::end(MADE_IN_ADVANCE);
}

std::string take_out_unused(std::vector<row_t> &devices)
{
	std::map<std::string_view, std::size_t> counts;
	const auto is_taken = [&](const row_t &row) {
		const auto &device = record_of<block_device>(row);
		if (!is_unused(device.kind, device.size))
			return false;
		counts[device.kind]++;
		return true;
	};
	devices.erase(std::remove_if(devices.begin(), devices.end(), is_taken), devices.end());
	std::string line;
	for (const auto &[kind, count] : counts)
		line += fmt::format("{}{} {}", line.empty() ? "Unused and not shown: " : ", ", count, kind);
	return line.empty() ? line : line + "; list devices shows all.\n";
}
