// SPDX-License-Identifier: Apache-2.0
// Which device stands on which.
#include "block_fields.h"
#include "kinds.h"

using link_t = block_link;

static constexpr field_t FIELDS[] = {
	always<&link_t::upper>("upper", "UPPER", "name of the device that stands on the other"),
	always<&link_t::lower>("lower", "LOWER", "name of the one that carries it"),
	always<&link_t::relation>("relation", "RELATION", "partition, slave or path"),
	text<&link_t::address>("address", "ADDRESS", "of a path: where it leads through"),
	text<&link_t::state>("state", "STATE", "of a path, as the kernel tells it"),
	text<&link_t::access>("access", "ACCESS",
                              "of a path of an NVMe namespace: optimized, non-optimized ..."),
};

static bool concerns(const row_t &row, const names_t &devices)
{
	const auto &link = record_of<link_t>(row);
	return devices.count(link.upper) > 0 && devices.count(link.lower) > 0;
}

// The tree of the devices shows the same to people.
const kind_t LINKS_KIND = {
	"links",
	"",
	"LINKS",
	"link",
	"which device stands on which",
	"No device stands on another.",
	side_t::BLOCK,
	IN_DOCUMENT,
	FIELDS,
	"upper,relation,lower,address,state,access",
	nullptr,
	ask_for_block<link_t, CMD_GET_BLOCK_LINKS>,
	{},
	concerns,
};
