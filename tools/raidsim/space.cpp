// SPDX-License-Identifier: Apache-2.0
// Which parts of a disk are used and which are free.
#include "space.h"

#include <algorithm>

std::vector<used_piece_t> pieces_on(const controller_t &where, const address_t &at)
{
	std::vector<used_piece_t> pieces;
	for (const container_t &c : where.containers) {
		for (const piece_t &p : c.pieces) {
			if (p.at == at)
				pieces.push_back({&c, &p});
		}
	}
	std::sort(pieces.begin(), pieces.end(), [](const used_piece_t &a, const used_piece_t &b) {
		return a.part->offset_kb < b.part->offset_kb;
	});
	return pieces;
}

std::vector<area_t> free_areas(const controller_t &where, const disk_t &d)
{
	std::vector<area_t> areas;
	if (!is_initialised(d))
		return areas;
	std::int64_t from = RESERVED_KB;
	for (const used_piece_t &used : pieces_on(where, d.at)) {
		if (used.part->offset_kb > from)
			areas.push_back({from, used.part->offset_kb - from});
		from = std::max(from, used.part->offset_kb + used.part->size_kb);
	}
	const std::int64_t end =
		d.blocks / 1024 * d.bytes_per_block + d.blocks % 1024 * d.bytes_per_block / 1024;
	if (end > from)
		areas.push_back({from, end - from});
	return areas;
}

std::optional<area_t> area_for(const controller_t &where, const disk_t &d, std::int64_t size_kb)
{
	for (const area_t &a : free_areas(where, d)) {
		if (a.size_kb >= size_kb)
			return a;
	}
	return std::nullopt;
}

std::int64_t largest_free_kb(const controller_t &where, const disk_t &d)
{
	std::int64_t largest = 0;
	for (const area_t &a : free_areas(where, d))
		largest = std::max(largest, a.size_kb);
	return largest;
}

bool is_initialised(const disk_t &d)
{
	return d.usage == "Initialized";
}
