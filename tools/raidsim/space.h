// SPDX-License-Identifier: Apache-2.0
// Which parts of a disk are used and which are free.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_SPACE_H
#define DISKSCOUT_TOOLS_RAIDSIM_SPACE_H

#include "state.h"

#include <optional>

// A disk's first kilobytes hold the controller's own notes.
constexpr std::int64_t RESERVED_KB = 64;
constexpr int MAXIMUM_PIECES = 4;

// A piece with the container that it belongs to.
struct used_piece_t {
	const container_t *owner;
	const piece_t *part;
};

struct area_t {
	std::int64_t offset_kb;
	std::int64_t size_kb;
};

// By offset.
std::vector<used_piece_t> pieces_on(const controller_t &where, const address_t &at);

// By offset; none on a disk that is not initialised.
std::vector<area_t> free_areas(const controller_t &where, const disk_t &d);

// The first area that is large enough.
std::optional<area_t> area_for(const controller_t &where, const disk_t &d, std::int64_t size_kb);

// The size of the largest area, 0 without one.
std::int64_t largest_free_kb(const controller_t &where, const disk_t &d);

bool is_initialised(const disk_t &d);

#endif
