// Which parts of a disk are used and which are free.
#include "space.h"

#include <algorithm>

std::vector<used_piece> pieces_on(const controller &where, const address &at)
{
	std::vector<used_piece> pieces;
	for (const container &c : where.containers) {
		for (const piece &p : c.pieces) {
			if (p.at == at)
				pieces.push_back({&c, &p});
		}
	}
	std::sort(pieces.begin(), pieces.end(), [](const used_piece &a, const used_piece &b) {
		return a.part->offset_kb < b.part->offset_kb;
	});
	return pieces;
}

std::vector<area> free_areas(const controller &where, const disk &d)
{
	std::vector<area> areas;
	if (!is_initialised(d))
		return areas;
	std::int64_t from = reserved_kb;
	for (const used_piece &used : pieces_on(where, d.at)) {
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

std::optional<area> area_for(const controller &where, const disk &d, std::int64_t size_kb)
{
	for (const area &a : free_areas(where, d)) {
		if (a.size_kb >= size_kb)
			return a;
	}
	return std::nullopt;
}

std::int64_t largest_free_kb(const controller &where, const disk &d)
{
	std::int64_t largest = 0;
	for (const area &a : free_areas(where, d))
		largest = std::max(largest, a.size_kb);
	return largest;
}

bool is_initialised(const disk &d)
{
	return d.usage == "Initialized";
}
