// Values that the kernel tells to root alone. The plug-in leaves them out without a word.
#include "withheld.h"

#include "block_fields.h"
#include "columns.h"
#include "reasons_lines.h"
#include "reasons_node.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>

// The tables of all mappings are asked for at one node.
static void add_mappings(const section_t &devices, reason_lines_t *lines)
{
	static const char CONTROL[] = "/dev/mapper/control";
	std::vector<std::string> names;
	for (const row_t &row : devices.answer.rows) {
		if (text_within<&block_device::dm_kind>(row) && !text_within<&block_device::dm_target>(row))
			names.emplace_back(record_of<block_device>(row).name);
	}
	const int error = names.empty() ? 0 : node_t(CONTROL).error();
	if (error != EACCES && error != EPERM)
		return;
	const reason_t reason = {
		severity_t::WARNING, code_t::NO_PERMISSION,
		fmt::format("targets are not told, {} cannot be opened: {}", CONTROL, strerror(error))};
	for (const std::string &name : names)
		lines->add(name, reason);
}

messages_t withheld(const sections_t &sections, const options_t &opts)
{
	for (const section_t &section : sections) {
		if (section.kind != &DEVICES_KIND ||
		    (!opts.json && !has_column(DEVICES_KIND, opts.columns, "dm_target")))
			continue;
		reason_lines_t lines(*section.kind);
		add_mappings(section, &lines);
		return lines.messages();
	}
	return {};
}
