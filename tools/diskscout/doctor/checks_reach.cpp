// SPDX-License-Identifier: Apache-2.0
// Whether what the lists are made from can be reached at all.
#include "checks_machine.h"

#include "finding.h"
#include "kernel_lines.h"
#include "machine.h"
#include "partition_query.h"
#include "reasons_node.h"
#include "site.h"

#include "diskscout_block.h"

#include <cstring>
#include <fmt/format.h>

// Lists that a plug-in did not come to answer: it hung, or crashed.
findings_t look_at_answers(const patient_t &at)
{
	findings_t findings;
	const auto add = [&](const char *name, const item_list_t &list) {
		if (!list.failure().empty())
			findings.push_back({verdict_t::PROBLEM,
			                    fmt::format("the {} query failed: {}", name, list.failure())});
	};
	add("device", at.from.block_list(CMD_GET_BLOCK_DEVICES));
	if (!at.from.has_classic())
		return findings;
	add("disk", at.from.list(CMD_GET_DISKS));
	add("partition", at.from.list(CMD_GET_PARTITIONS));
	add("CD-ROM", at.from.list(CMD_GET_CDROMS));
	return findings;
}

static bool kernel_knows_sysfs()
{
	lines_t lines("/proc/filesystems");
	std::string line;
	while (lines.next(&line)) {
		if (line == "nodev\tsysfs\n")
			return true;
	}
	return false;
}

findings_t look_at_sysfs(const patient_t &at)
{
	const item_list_t &devices = at.from.block_list(CMD_GET_BLOCK_DEVICES);
	if (!devices.failed() || devices.error() != ENOENT)
		return {};
	const bool is_unmounted = kernel_knows_sysfs();
	return {{is_unmounted ? verdict_t::PROBLEM : verdict_t::FINE,
	         is_unmounted ? "this kernel has a sysfs, which is not mounted at /sys"
	                      : "this host has no /sys: the classic lists are all that there is"}};
}

findings_t look_at_path(const patient_t &)
{
	return not_in_path("cat");
}

findings_t look_at_block_table(const patient_t &at)
{
	const machine_t machine = machine_of(at.from);
	const int error = machine.tables.block.error;
	if (!error || is_denied(error))
		return {};
	return {{error == ENOENT ? judged(machine, verdict_t::PROBLEM) : verdict_t::PROBLEM,
	         fmt::format("/proc/partitions cannot be read: {}", strerror(error)),
	         advice_for(error, at.inherited)}};
}

// ---- permission ----

static bool is_disk_of_today(const known_device_t &device)
{
	return device.kind == "disk" && !device.hidden && device.size > 0 && !device.node.empty();
}

// What today's lists lack: they open no device for their rows, but for what is on it.
static findings_t denied_today(const patient_t &at, const facts_t &facts)
{
	static const std::string CONTROL = "/dev/mapper/control";
	std::vector<std::string> nodes;
	bool has_mappings = false;
	for (const known_device_t &device : facts.devices) {
		has_mappings |= device.kind == "dm";
		if (is_disk_of_today(device) && is_denied(node_t(device.node).error()))
			nodes.push_back(device.node);
	}
	if (nodes.empty() && has_mappings && is_denied(node_t(CONTROL).error()))
		nodes.push_back(CONTROL);
	return advised(
		about(nodes, fmt::format("cannot be opened: {}", strerror(EACCES)), verdict_t::WARNING),
		advice_for(EACCES, at.inherited));
}

findings_t look_at_permission(const patient_t &at)
{
	return advised(told(machine_of(at.from), code_t::NO_PERMISSION, verdict_t::PROBLEM),
	               advice_for(EACCES, at.inherited));
}

findings_t look_at_contents(const patient_t &at)
{
	// Who may not open these may open no others.
	if (!look_at_permission(at).empty())
		return {};
	facts_t facts;
	take_devices(&facts, at.from);
	return denied_today(at, facts);
}

// ---- nodes and what is read from them ----

findings_t look_at_nodes(const patient_t &at)
{
	const machine_t machine = machine_of(at.from);
	findings_t findings = told(machine, code_t::NOT_OPENED, verdict_t::PROBLEM);
	for (const known_disk_t &disk : machine.facts.disks) {
		// Those without a size are told already.
		const int error = disk.size ? node_t(disk.node).error() : 0;
		if (error && !is_denied(error)) {
			append(findings, advised(about({disk.node},
			                               fmt::format("cannot be opened: {}", strerror(error)),
			                               verdict_t::PROBLEM),
			                         advice_for(error, at.inherited)));
		}
	}
	return findings;
}

findings_t look_at_partition_tables(const patient_t &at)
{
	facts_t facts;
	take_disks(&facts, at.from);
	findings_t findings;
	for (const known_disk_t &disk : facts.disks) {
		const partition_tables_t tables = read_partition_tables(disk.node);
		if (tables.is_opened && !tables.failure.empty())
			findings.push_back({verdict_t::PROBLEM, tables.failure});
	}
	return findings;
}

// A failure whose cause is not there any more, or is none of those that are known.
findings_t look_at_queries(const patient_t &at)
{
	findings_t findings;
	const auto add = [&](const char *name, const item_list_t &list, const std::string &cause) {
		if (list.failed() && list.failure().empty() && cause.empty())
			findings.push_back(
				{verdict_t::PROBLEM,
			         fmt::format("the {} query failed, and no cause was found", name)});
	};
	const item_list_t &devices = at.from.block_list(CMD_GET_BLOCK_DEVICES);
	if (devices.failed() && devices.failure().empty() && devices.error() != ENOENT) {
		findings.push_back(
			{verdict_t::PROBLEM,
		         fmt::format("the device query failed: {}",
		                     devices.error() ? strerror(devices.error()) : "no cause was found"),
		         advice_for(devices.error(), at.inherited)});
	}
	// Without what they run, they fail for that.
	if (!look_at_path(at).empty())
		return findings;
	const item_list_t &partitions = at.from.list(CMD_GET_PARTITIONS);
	add("disk", at.from.list(CMD_GET_DISKS), "");
	add("partition", partitions, partitions.failed() ? known_partition_failure(at.from) : "");
	add("CD-ROM", at.from.list(CMD_GET_CDROMS), "");
	return findings;
}

findings_t look_at_mount_table(const patient_t &at)
{
	const int error = read_kernel_tables().mounts.error;
	if (!error)
		return {};
	return {{verdict_t::PROBLEM, fmt::format("/etc/mtab cannot be read: {}", strerror(error)),
	         advice_for(error, at.inherited)}};
}
