// SPDX-License-Identifier: Apache-2.0
// One RAID controller with all that is behind it: every disk once, below the first container that uses it,
// else among the spares or the unused ones; its free areas below it.
#include "controller_part.h"

#include "raid.h"
#include "raid_site.h"
#include "raid_state.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace
{

class controller_part_t
{
public:
	controller_part_t(machine_tree_t &machine, const std::string &name, enquiry_t &from)
	    : machine_(machine), name_(name), from_(from), site_(from.raid())
	{
	}
	void add(const aac_controller *listed, claims_t &claims);

private:
	tree_node_t node(const std::string &id, const char *kind, std::string name) const;
	void add_containers(claims_t &claims);
	void add_disks();
	void add_members(const raid_container_t &container, std::size_t at);
	void add_spares();
	void add_groups();
	void add_free_areas();
	void tell_cause();

	std::size_t container_of(int number);
	std::size_t disk_of(int at);
	void use(std::size_t container, std::size_t member);
	bool is_below(std::size_t node, std::size_t other) const;

	machine_tree_t &machine_;
	const std::string &name_;
	enquiry_t &from_;
	raid_site_t &site_;
	std::size_t top_ = 0;
	std::vector<std::size_t> in_order_;        // containers, a row each
	std::map<int, std::size_t> containers_;    // by number
	std::map<int, std::size_t> disks_;         // by address
	std::vector<std::size_t> all_disks_;       // in the order in which they were found
	std::map<std::size_t, std::size_t> above_; // whom a container or a disk is drawn below
};

} // namespace

tree_node_t controller_part_t::node(const std::string &id, const char *kind, std::string name) const
{
	tree_node_t node{machine_.at(top_).id + id, kind, std::move(name)};
	node.controller = name_;
	return node;
}

// ---- who is there ----

void controller_part_t::add_containers(claims_t &claims)
{
	const std::vector<raid_container_t> &rows = site_.containers(name_).rows;
	const std::vector<raid_state_t> states = states_of(site_, name_);
	for (std::size_t i = 0; i < rows.size(); i++) {
		const int number = rows[i].record.nRaidID;
		tree_node_t container = node(fmt::format("/container/{}", number), "container",
		                             fmt::format("container {}", number));
		const auto shown = std::make_shared<shown_container_t>(shown_container_t{rows[i], states[i]});
		container.record = shown;
		container.sources = {{&CONTAINERS_KIND, {shown.get(), &from_}}};
		const std::size_t at = machine_.add(std::move(container));
		in_order_.push_back(at);
		containers_.emplace(number, at);
		const std::string device = text_of(rows[i].device);
		if (!device.empty())
			claims.push_back({at, device});
	}
}

void controller_part_t::add_disks()
{
	// As the record has it, one less than it is named; what nobody has a word for may be a disk.
	constexpr int OTHER = KESTREL_HWRAID_DSK_TYPE_UNKNOWN - 1, DISK = KESTREL_HWRAID_DSK_TYPE_DISK - 1;
	for (const raid_disk_t &row : site_.disks(name_).rows) {
		const int at = row.record.nPosition;
		const bool is_disk = row.record.DeviceType == DISK || row.record.DeviceType == OTHER;
		tree_node_t disk =
			node("/disk/" + address(at), is_disk ? "raid_disk" : "raid_device", address(at));
		disk.address = at;
		disk.sources = {{&RAID_DISKS_KIND, {&row, &from_}}};
		const std::size_t added = machine_.add(std::move(disk));
		disks_.emplace(at, added);
		all_disks_.push_back(added);
	}
}

// What is named and not listed has gone, unless the list is not whole.
std::size_t controller_part_t::disk_of(int at)
{
	const auto found = disks_.find(at);
	if (found != disks_.end())
		return found->second;
	tree_node_t disk = node("/disk/" + address(at), "raid_disk", address(at));
	disk.address = at;
	if (!site_.disks(name_).failed)
		disk.state = "missing";
	const std::size_t added = machine_.add(std::move(disk));
	disks_.emplace(at, added);
	all_disks_.push_back(added);
	return added;
}

std::size_t controller_part_t::container_of(int number)
{
	const auto found = containers_.find(number);
	if (found != containers_.end())
		return found->second;
	tree_node_t container =
		node(fmt::format("/container/{}", number), "container", fmt::format("container {}", number));
	container.raid_id = number;
	container.state = site_.containers(name_).failed ? "unknown" : "missing";
	const std::size_t added = machine_.add(std::move(container));
	containers_.emplace(number, added);
	return added;
}

// ---- who belongs to whom ----

bool controller_part_t::is_below(std::size_t node, std::size_t other) const
{
	for (auto at = above_.find(node); at != above_.end(); at = above_.find(at->second)) {
		if (at->second == other)
			return true;
	}
	return node == other;
}

void controller_part_t::use(std::size_t container, std::size_t member)
{
	machine_.stand_on(container, member);
	const auto owner = above_.find(member);
	if (owner == above_.end() && !is_below(container, member)) {
		above_.emplace(member, container);
		machine_.put_below(container, member);
	} else if (owner == above_.end() || owner->second != container) {
		std::vector<std::string> &shared = machine_.at(container).shared;
		const std::string &name = machine_.at(member).name;
		if (std::find(shared.begin(), shared.end(), name) == shared.end())
			shared.push_back(name);
	}
}

void controller_part_t::add_members(const raid_container_t &container, std::size_t at)
{
	for (const int member : container.record.nPosition) {
		if (member != NO_ADDRESS)
			use(at, is_container(member) ? container_of(member) : disk_of(member));
	}
}

void controller_part_t::add_spares()
{
	const std::vector<raid_container_t> &rows = site_.containers(name_).rows;
	for (std::size_t i = 0; i < rows.size(); i++) {
		if (rows[i].record.nHotSpare == NO_ADDRESS)
			continue;
		const tree_node_t &container = machine_.at(in_order_[i]);
		tree_node_t &disk = machine_.at(disk_of(rows[i].record.nHotSpare));
		disk.spare_of.push_back(container.id);
		disk.remark += (disk.remark.empty() ? "spare of " : ", ") + container.name;
	}
}

// What no container is made of.
void controller_part_t::add_groups()
{
	struct group_t {
		const char *name;
		bool (*has)(const tree_node_t &disk);
	};
	static constexpr group_t GROUPS[] = {
		{"spares", [](const tree_node_t &disk) { return !disk.spare_of.empty(); }},
		{"unused",
	         [](const tree_node_t &disk) { return disk.spare_of.empty() && disk.kind == "raid_disk"; }},
		{"others",
	         [](const tree_node_t &disk) { return disk.spare_of.empty() && disk.kind != "raid_disk"; }},
	};
	for (const group_t &group : GROUPS) {
		std::vector<std::size_t> disks;
		for (const std::size_t disk : all_disks_) {
			if (above_.count(disk) == 0 && group.has(machine_.at(disk)))
				disks.push_back(disk);
		}
		if (disks.empty())
			continue;
		const std::size_t at =
			machine_.add(node(fmt::format("/{}", group.name), "group", group.name));
		machine_.put_below(top_, at);
		for (const std::size_t disk : disks)
			machine_.put_below(at, disk);
	}
}

void controller_part_t::add_free_areas()
{
	for (const raid_space_t &row : site_.spaces(name_).rows) {
		const std::string offset = row.offset == NOT_TOLD ? "?" : std::to_string(row.offset);
		tree_node_t area =
			node(fmt::format("/free/{}/{}", address(row.disk), offset), "free", "free");
		area.address = row.disk;
		area.sources = {{&RAID_SPACE_KIND, {&row, &from_}}};
		const std::size_t disk = disk_of(row.disk);
		machine_.put_below(disk, machine_.add(std::move(area)));
	}
}

// ---- what could not be asked ----

void controller_part_t::tell_cause()
{
	struct asked_t {
		const char *what;
		const raid_failure_t &how;
	};
	const asked_t asked[] = {{"containers", site_.containers(name_)},
	                         {"disks", site_.disks(name_)},
	                         {"free areas", site_.spaces(name_)}};
	// Of one cause they are told together.
	std::vector<std::pair<std::string, std::string>> causes;
	for (const asked_t &one : asked) {
		if (!one.how.failed)
			continue;
		const std::string why = one.how.failure.empty() ? "the query failed" : one.how.failure;
		if (!causes.empty() && causes.back().second == why)
			causes.back().first += fmt::format(", {}", one.what);
		else
			causes.emplace_back(one.what, why);
	}
	std::string text;
	for (const auto &[what, why] : causes)
		text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", what, why);
	if (!text.empty())
		machine_.at(top_).cause = text;
}

void controller_part_t::add(const aac_controller *listed, claims_t &claims)
{
	tree_node_t controller{name_, "controller", name_};
	controller.controller = name_;
	if (listed)
		controller.sources = {{&CONTROLLERS_KIND, {listed, &from_}}};
	top_ = machine_.add(std::move(controller));
	add_containers(claims);
	add_disks();
	const std::vector<raid_container_t> &rows = site_.containers(name_).rows;
	for (std::size_t i = 0; i < rows.size(); i++)
		add_members(rows[i], in_order_[i]);
	for (const std::size_t container : in_order_) {
		if (above_.count(container) == 0)
			machine_.put_below(top_, container);
	}
	add_spares();
	add_groups();
	add_free_areas();
	tell_cause();
}

void add_controller(machine_tree_t &machine, const std::string &name, const aac_controller *listed,
                    enquiry_t &from, claims_t &claims)
{
	controller_part_t(machine, name, from).add(listed, claims);
}
