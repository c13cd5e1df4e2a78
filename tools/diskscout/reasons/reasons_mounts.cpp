// SPDX-License-Identifier: Apache-2.0
// Mounts that the classic lists do not see: they read the first lines of the mount table alone.
#include "reasons_lists.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <set>

static constexpr std::size_t LINES_READ = 32;
static const std::string DEV = "/dev/";

void take_unread_mounts(const mount_table_t &table, bool has_rows, const char *unknown, const kind_t &kind,
                        messages_t *messages)
{
	if (table.error && has_rows)
		messages->push_back(
			{severity_t::WARNING, &kind, code_t::NO_MOUNT_TABLE,
		         fmt::format("/etc/mtab cannot be read: {}: {}", strerror(table.error), unknown)});
}

void take_late_mounts(const mount_table_t &table, const std::vector<std::string> &nodes,
                      reason_lines_t *lines)
{
	reason_t late =
		cut(detail_t::MOUNTS, fmt::format("mounted behind the {}nd line of /etc/mtab", LINES_READ));
	late.of_node = true;
	std::set<std::string> told;
	for (std::size_t i = LINES_READ; i < table.sources.size(); i++) {
		const std::string &source = table.sources[i];
		if (std::find(nodes.begin(), nodes.end(), source) != nodes.end() &&
		    told.insert(source).second)
			lines->add(source.substr(DEV.size()), late);
	}
}
