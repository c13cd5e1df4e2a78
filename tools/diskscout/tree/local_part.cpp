// SPDX-License-Identifier: Apache-2.0
// What the kernel sees of the machine.
#include "local_part.h"

#include "block_fields.h"
#include "cell.h"
#include "text.h"
#include "unused.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

using numbers_t = std::map<std::string_view, std::size_t>; // of nodes, by the kernel's names

// A list that failed is told of; what it found is drawn all the same.
static std::vector<row_t> rows_of(const kind_t &kind, enquiry_t &from, messages_t &messages)
{
	section_t section = {&kind, kind.ask(from)};
	if (section.answer.failed)
		messages.push_back(message_of_failure(section, from));
	return std::move(section.answer.rows);
}

// ---- arrays ----

// The kernel has words for what an array does, none for what it lacks.
static void tell_state(const block_array &array, tree_node_t &node)
{
	if (array.degraded <= 0) // or absent
		return;
	const bool is_rebuilding = array.sync_action && strcmp(array.sync_action, "recover") == 0;
	node.state = is_rebuilding ? "rebuilding" : "degraded";
	if (is_rebuilding && array.sync_done >= 0 && array.sync_total > 0 &&
	    array.sync_done <= array.sync_total)
		node.done_permille = static_cast<std::int64_t>(1000.0 * static_cast<double>(array.sync_done) /
		                                               static_cast<double>(array.sync_total));
}

static void add_arrays(machine_tree_t &machine, const numbers_t &numbers, enquiry_t &from,
                       messages_t &messages)
{
	const auto is_array = [&](const auto &number) { return machine.at(number.second).kind == "md"; };
	if (std::none_of(numbers.begin(), numbers.end(), is_array))
		return;
	for (const row_t &row : rows_of(ARRAYS_KIND, from, messages)) {
		const auto &array = record_of<block_array>(row);
		const auto found = numbers.find(array.name);
		if (found == numbers.end())
			continue;
		tree_node_t &node = machine.at(found->second);
		node.sources.insert(node.sources.begin(), {&ARRAYS_KIND, row});
		if (member_within<&block_array::sync_total>(row))
			tell_state(array, node);
	}
}

// ---- what stands on what ----

// Of a list that is not whole nobody can say what it lacks.
static void add_containers(machine_tree_t &machine, const claims_t &claims, const std::vector<row_t> &devices,
                           const numbers_t &numbers, bool is_whole)
{
	std::map<std::string_view, std::size_t> by_path;
	for (const row_t &row : devices) {
		const auto &device = record_of<block_device>(row);
		const std::size_t number = numbers.at(device.name);
		if (device.node)
			by_path.emplace(device.node, number);
		for (const block_text *link = device.links; link; link = link->next)
			by_path.emplace(link->text, number);
	}
	for (const claim_t &claim : claims) {
		const auto found = by_path.find(claim.node);
		if (found == by_path.end()) {
			machine.at(claim.container).lacks_device = is_whole;
			continue;
		}
		machine.stand_on(found->second, claim.container);
		machine.put_below(found->second, claim.container);
	}
}

static void add_links(machine_tree_t &machine, const numbers_t &numbers, const std::vector<row_t> &links)
{
	std::map<std::size_t, std::vector<std::size_t>> uppers;
	for (const row_t &row : links) {
		const auto &link = record_of<block_link>(row);
		const auto upper = numbers.find(link.upper), lower = numbers.find(link.lower);
		if (upper == numbers.end() || lower == numbers.end())
			continue;
		machine.stand_on(upper->second, lower->second);
		uppers[lower->second].push_back(upper->second);
	}
	for (auto &[lower, above] : uppers) {
		// In the order of the devices.
		std::sort(above.begin(), above.end());
		for (const std::size_t upper : above)
			machine.put_below(lower, upper);
	}
}

static void reach(const machine_tree_t &machine, std::size_t from, std::vector<bool> &is_reached)
{
	std::vector<std::size_t> open = {from};
	while (!open.empty()) {
		const std::size_t node = open.back();
		open.pop_back();
		if (is_reached[node])
			continue;
		is_reached[node] = true;
		for (const std::size_t lower : machine.below(node))
			open.push_back(lower);
	}
}

// Whoever is below nobody; and of each ring, which nobody else leads to, the first one.
static void put_below_local(machine_tree_t &machine, std::size_t local)
{
	std::vector<bool> is_reached(machine.size());
	is_reached[local] = true;
	for (const std::size_t root : machine.roots()) {
		reach(machine, root, is_reached);
		if (root > local)
			machine.put_below(local, root);
	}
	for (std::size_t node = local + 1; node < machine.size(); node++) {
		if (is_reached[node])
			continue;
		machine.put_below(local, node);
		reach(machine, node, is_reached);
	}
}

// ---- a host without the tables of today ----

// Disks and partitions by the kernel's old tables, which agents of all ages know.
static void add_classic_devices(machine_tree_t &machine, const claims_t &claims, enquiry_t &from,
                                messages_t &messages)
{
	const char NODES[] = "/dev/";
	const auto name_of = [&](const std::string &node) {
		return node.rfind(NODES, 0) == 0 ? node.substr(strlen(NODES)) : node;
	};
	std::map<std::string, std::size_t> disks;
	for (const row_t &row : rows_of(DISKS_KIND, from, messages)) {
		const std::string node = text_of(record_of<STORAGE_DISK_LIST>(row).szDeviceName);
		const std::string name = printable(name_of(node));
		disks.emplace(node, machine.add({name, "disk", name, {{&DISKS_KIND, row}}}));
	}
	for (const row_t &row : rows_of(PARTITIONS_KIND, from, messages)) {
		const auto disk = disks.find(text_of(record_of<STORAGE_PART_LIST>(row).szDiskDeviceName));
		const std::string name = printable(name_of(raw_cell_of(*PARTITIONS_KIND.fields.first, row)));
		const std::size_t added = machine.add({name, "partition", name, {{&PARTITIONS_KIND, row}}});
		if (disk == disks.end())
			continue;
		machine.stand_on(added, disk->second);
		machine.put_below(disk->second, added);
	}
	for (const claim_t &claim : claims) {
		const auto disk = disks.find(claim.node);
		machine.at(claim.container).lacks_device = disk == disks.end();
		if (disk == disks.end())
			continue;
		machine.stand_on(disk->second, claim.container);
		machine.put_below(disk->second, claim.container);
	}
}

// ---- ----

static std::string add_devices(machine_tree_t &machine, std::size_t local, const claims_t &claims,
                               local_options_t how, enquiry_t &from, messages_t &messages)
{
	const std::size_t told_before = messages.size();
	std::vector<row_t> devices = rows_of(DEVICES_KIND, from, messages);
	const bool is_whole = messages.size() == told_before;
	if (!is_whole)
		machine.at(local).cause = messages.back().text;
	std::string left_out = how.leaves_out_unused ? take_out_unused(devices) : "";
	numbers_t numbers;
	for (const row_t &row : devices) {
		const auto &device = record_of<block_device>(row);
		numbers.emplace(device.name,
		                machine.add({device.name, device.kind, device.name, {{&DEVICES_KIND, row}}}));
	}
	add_containers(machine, claims, devices, numbers, is_whole);
	add_arrays(machine, numbers, from, messages);
	add_links(machine, numbers, rows_of(LINKS_KIND, from, messages));
	// The list of mounts is asked for where a device is shown.
	if (!devices.empty())
		rows_of(MOUNTS_KIND, from, messages);
	return left_out;
}

std::string add_local_part(machine_tree_t &machine, const claims_t &claims, local_options_t how,
                           enquiry_t &from, messages_t &messages)
{
	const std::size_t local = machine.add({"local", "local", "local"});
	std::string left_out;
	if (from.block_list(CMD_GET_BLOCK_DEVICES).error() == ENOENT) {
		messages.push_back({severity_t::NOTE, &TREE_KIND, code_t::NO_SYSFS,
		                    "this host has no /sys: its disks are those of the classic list"});
		add_classic_devices(machine, claims, from, messages);
	} else {
		left_out = add_devices(machine, local, claims, how, from, messages);
	}
	put_below_local(machine, local);
	return left_out;
}
