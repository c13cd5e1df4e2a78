// SPDX-License-Identifier: Apache-2.0
// Why a classic list lacks what this host has: its devices beside the lists, and the kernel's tables beside
// both.
#include "reasons.h"

#include "reasons_lists.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>

static message_t no_devices(int error)
{
	if (error == ENOENT)
		return {severity_t::NOTE, nullptr, code_t::NO_SYSFS,
		        "this host has no /sys: what the lists leave out could not all be asked"};
	return {severity_t::WARNING, nullptr, code_t::QUERY_FAILED,
	        fmt::format("the devices could not be asked{}",
	                    error ? fmt::format(": {}", strerror(error)) : "")};
}

static void append(messages_t *to, const messages_t &more)
{
	to->insert(to->end(), more.begin(), more.end());
}

messages_t reasons(enquiry_t &from, const kinds_t &shown, bool devices_are_named)
{
	const auto is_shown = [&](const kind_t &kind) {
		return std::find(shown.begin(), shown.end(), &kind) != shown.end();
	};
	const bool disks = is_shown(DISKS_KIND), partitions = is_shown(PARTITIONS_KIND),
		   cdroms = is_shown(CDROMS_KIND);
	if (!disks && !partitions && !cdroms)
		return {};

	facts_t facts;
	messages_t messages;
	const kernel_tables_t tables = read_kernel_tables();
	take_devices(&facts, from);
	if (!facts.knows_devices && !devices_are_named)
		messages.push_back(no_devices(facts.devices_error));
	std::vector<unlisted_t> unlisted;
	if (disks || partitions) {
		take_disks(&facts, from);
		unlisted = unlisted_disks(facts, tables);
	}
	if (disks)
		append(&messages, disk_reasons(facts, unlisted, tables, DISKS_KIND));
	if (partitions) {
		take_partitions(&facts, from);
		append(&messages, partition_reasons(facts, unlisted, tables, PARTITIONS_KIND, disks));
	}
	if (cdroms) {
		take_cdroms(&facts, from);
		append(&messages, cdrom_reasons(facts, tables, CDROMS_KIND));
	}
	return messages;
}
