// SPDX-License-Identifier: Apache-2.0
// What stands over and in place of a table.
#include "heading.h"

#include "kind_sets.h"
#include "raid_site.h"
#include "text.h"

#include <fmt/format.h>

std::string heading_of(const kind_t &kind, enquiry_t &from)
{
	// Each row tells its controller, but where there is only one.
	if (!is_of_controller(&kind) || lacks_controller(kind, from) || !from.raid().is_as_before())
		return fmt::format("{}\n", kind.heading);
	return fmt::format("{} ON {}\n", kind.heading, printable(*from.controller()));
}

std::string nothing_of(const section_t &section, enquiry_t &from)
{
	const kind_t &kind = *section.kind;
	// That nothing was found would be a false answer.
	if (section.answer.failed)
		return fmt::format("The {} query failed.\n", kind.name);
	if (lacks_controller(kind, from))
		return fmt::format("{}\n", CONTROLLERS_KIND.none);
	const bool as_before = is_of_controller(&kind) && from.raid().is_as_before();
	return fmt::format("{}\n", as_before && !kind.old_none.empty() ? kind.old_none : kind.none);
}
