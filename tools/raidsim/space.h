// Which parts of a disk are used and which are free.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_SPACE_H
#define DISKSCOUT_TOOLS_RAIDSIM_SPACE_H

#include "state.h"

#include <optional>

// A disk's first kilobytes hold the controller's own notes.
constexpr std::int64_t reserved_kb = 64;
constexpr int maximum_pieces = 4;

// A piece with the container that it belongs to.
struct used_piece {
	const container *owner;
	const piece *part;
};

struct area {
	std::int64_t offset_kb;
	std::int64_t size_kb;
};

// By offset.
std::vector<used_piece> pieces_on(const controller &where, const address &at);

// By offset; none on a disk that is not initialised.
std::vector<area> free_areas(const controller &where, const disk &d);

// The first area that is large enough.
std::optional<area> area_for(const controller &where, const disk &d, std::int64_t size_kb);

// The size of the largest area, 0 without one.
std::int64_t largest_free_kb(const controller &where, const disk &d);

bool is_initialised(const disk &d);

#endif
