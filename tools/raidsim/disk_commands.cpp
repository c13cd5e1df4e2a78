// SPDX-License-Identifier: Apache-2.0
// Commands about disks.
#include "disk_commands.h"

#include "space.h"
#include "text.h"

#include <algorithm>
#include <fmt/format.h>

static const char *yes_no(bool value)
{
	return value ? "YES" : "NO";
}

static std::string full_row(const disk_t &d)
{
	// From the device type on, values stand one column right of their headings.
	return fmt::format("{:<6}   {:<15} {:<16} {:<9} {:<17} {:<5} {:>9} {:<11} {:<16} {:<6} {} ",
	                   address_text(d.at), d.type, d.removable ? "Y" : "N", d.vendor, d.product,
	                   d.revision, d.blocks, d.bytes_per_block, d.usage, yes_no(d.shared), d.rate);
}

static std::string short_row(const disk_t &d)
{
	return fmt::format("{:<6}   {:<15} {:>9} {:<11} {:<16} {:<6} {} ", address_text(d.at), d.type,
	                   d.blocks, d.bytes_per_block, d.usage, yes_no(d.shared), d.rate);
}

void disk_list(context_t &at, const command_t &what)
{
	what.expect_operands(0, 0);
	const bool full = what.truth("full");
	if (full) {
		at.answer = {"C:ID:L  Device Type     Removable media  Vendor-ID Product-ID        Rev   "
		             "Blocks    "
		             "Bytes/Block Usage            Shared Rate",
		             "------  --------------  ---------------  --------- ----------------  ----- "
		             "--------- "
		             "----------- ---------------- ------ ----"};
	} else {
		at.answer = {"C:ID:L  Device Type     Blocks    Bytes/Block Usage            Shared Rate",
		             "------  --------------  --------- ----------- ---------------- ------ ----"};
	}
	for (const disk_t &d : at.open_controller().disks)
		at.answer.push_back(full ? full_row(d) : short_row(d));
}

// The top of the multi-level container that a container belongs to, or itself.
static const container_t &top_of(controller_t &where, const container_t &c)
{
	return c.parent < 0 ? c : require_container(where, c.parent);
}

void disk_initialize(context_t &at, const command_t &what)
{
	what.expect_operands(1, 1);
	controller_t &where = at.open_controller();
	disk_t &d = require_storage(where, what.address_at(0));
	const bool always = what.truth("always");
	const bool unconditional = what.truth("unconditional");
	std::vector<int> lost;
	for (const used_piece_t &used : pieces_on(where, d.at)) {
		const container_t &top = top_of(where, *used.owner);
		if (top.data && !always)
			throw command_error("The specified disk has a container that holds data.");
		if (top.usage == "Open" && !unconditional)
			throw command_error("The specified disk has a container that is in use.");
		lost.push_back(top.number);
	}
	for (const int number : lost)
		remove_container(where, number);
	for (container_t &c : where.containers)
		c.spares.erase(std::remove(c.spares.begin(), c.spares.end(), d.at), c.spares.end());
	d.usage = "Initialized";
}

void disk_show_defect(context_t &at, const command_t &what)
{
	what.expect_operands(1, 1);
	const disk_t &d = require_disk(at.open_controller(), what.address_at(0));
	if (d.type != "Disk")
		throw command_error("The device has answered with a parameter error.");
	if (d.bad_status)
		throw command_error("The controller has detected a bad status of the device.");
	at.answer = {"", fmt::format("Number of PRIMARY defects on drive: {}", d.primary_defects),
	             fmt::format("Number of GROWN defects on drive: {}", d.grown_defects)};
}

static std::string space_row(const disk_t &d, const char *usage, const area_t &a)
{
	return fmt::format("  {}     {:<9} {}:{}", address_text(d.at), usage, size_text(a.offset_kb),
	                   size_text(a.size_kb));
}

static void add_space(context_t &at, const disk_t &d)
{
	struct row_t {
		std::int64_t offset_kb;
		std::string text;
	};
	const controller_t &where = at.open_controller();
	std::vector<row_t> rows;
	for (const used_piece_t &used : pieces_on(where, d.at)) {
		const piece_t &p = *used.part;
		rows.push_back({p.offset_kb,
		                space_row(d, p.rebuild ? "Rebuild" : "Container", {p.offset_kb, p.size_kb})});
	}
	for (const area_t &a : free_areas(where, d))
		rows.push_back({a.offset_kb, space_row(d, "Free", a)});
	std::sort(rows.begin(), rows.end(),
	          [](const row_t &a, const row_t &b) { return a.offset_kb < b.offset_kb; });
	for (const row_t &r : rows)
		at.answer.push_back(r.text);
}

void disk_show_space(context_t &at, const command_t &what)
{
	what.expect_operands(0, 1);
	at.answer = {"", "Scsi C:ID:L Usage      Size", "----------- ---------- -------------"};
	controller_t &where = at.open_controller();
	if (!what.operands().empty()) {
		add_space(at, require_disk(where, what.address_at(0)));
		return;
	}
	for (const disk_t &d : where.disks)
		add_space(at, d);
}

static std::string partition_row(const container_t &c, const piece_t &p)
{
	const bool member = c.parent >= 0;
	return fmt::format("{:<6}  {}:{}  {:>6}     {:<7}  {:>6}     {:<7}  RW", address_text(p.at),
	                   size_text(p.offset_kb), size_text(p.size_kb), c.number, c.type,
	                   member ? c.parent : 0, member ? "Stripe" : "None");
}

void disk_show_partition(context_t &at, const command_t &what)
{
	what.expect_operands(0, 0);
	const controller_t &where = at.open_controller();
	at.answer = {"Scsi    Partition      Container  Container Multi-level  Multi-level",
	             "C:ID:L  Offset:Size    Num        Type     Num          Type     R/W",
	             "------  -------------  ---------  -------  -----------  -------  ---"};
	for (const disk_t &d : where.disks) {
		for (const used_piece_t &used : pieces_on(where, d.at))
			at.answer.push_back(partition_row(*used.owner, *used.part));
	}
}
