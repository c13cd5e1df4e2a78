// What stands over and in place of a table.
#include "heading.h"

#include "kind_sets.h"
#include "text.h"

#include <fmt/format.h>

std::string heading_of(const kind_t &kind, enquiry_t &from)
{
	if (!is_of_controller(&kind) || lacks_controller(kind, from))
		return fmt::format("{}\n", kind.heading);
	return fmt::format("{} ON {}\n", kind.heading, printable(*from.controller()));
}

std::string nothing_of(const section_t &section, enquiry_t &from)
{
	const kind_t &kind = *section.kind;
	// That nothing was found would be a false answer.
	if (section.answer.failed)
		return fmt::format("The {} query failed.\n", kind.name);
	return fmt::format("{}\n", lacks_controller(kind, from) ? CONTROLLERS_KIND.none : kind.none);
}
