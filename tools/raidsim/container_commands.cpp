// SPDX-License-Identifier: Apache-2.0
// Commands about existing containers.
#include "container_commands.h"

#include "space.h"
#include "text.h"

#include <algorithm>
#include <fmt/format.h>

static const int FIRST_MEMBER_NUMBER = 24;

static std::string without_blanks_at_end(const std::string &text)
{
	return text.substr(0, text.find_last_not_of(' ') + 1);
}

// "0:02:0 64.0KB:74.5GB"
static std::string piece_text(const piece_t &p)
{
	return fmt::format("{} {}:{}", hex_address_text(p.at), size_text(p.offset_kb), size_text(p.size_kb));
}

class container_table_t
{
public:
	// A blank before the numbers 0 to 9 and before labels is the tool's own way.
	container_table_t(const controller_t &where, bool blank) : where_(where), blank_(blank) {}

	std::vector<std::string> lines = {
		"Num          Total  Oth Stripe          Scsi   Partition",
		"Label Type   Size   Ctr Size   Usage   C:ID:L Offset:Size",
		"----- ------ ------ --- ------ ------- ------ -------------",
	};

	void add_container(const container_t &c)
	{
		add(c);
		for (const container_t *member : members_of(where_, c.number))
			add(*member);
		lines.emplace_back();
	}

private:
	void add_row(const std::string &text, std::size_t piece_index, const container_t &c)
	{
		const std::string part =
			piece_index < c.pieces.size() ? piece_text(c.pieces[piece_index]) : "";
		std::string row = without_blanks_at_end(fmt::format("{:<39}{}", text, part));
		const bool one_blank = row.size() > 1 && row[0] == ' ' && row[1] != ' ';
		lines.push_back(one_blank && !blank_ ? row.substr(1) : row);
	}

	void add(const container_t &c)
	{
		const std::string stripe = c.stripe_kb > 0 ? fmt::format("{}KB", c.stripe_kb) : "";
		add_row(fmt::format("{:>2}    {:<6} {}     {:<6} {:<7} ", c.number, c.type,
		                    size_text(c.size_kb), stripe, c.usage),
		        0, c);
		std::size_t next = 1;
		// The label line stands even where nothing is to say, but not below a member's only piece.
		if (c.parent < 0 || c.pieces.size() > 1)
			add_row(fmt::format(" {:<20} {:<16} ", c.device, c.label), next++, c);
		while (next < c.pieces.size())
			add_row("", next++, c);
	}

	const controller_t &where_;
	bool blank_;
};

void container_list(context_t &at, const command_t &what)
{
	what.expect_operands(0, 1);
	controller_t &where = at.open_controller();
	container_table_t table(where, !at.wanted.noblank);
	if (!what.operands().empty()) {
		const container_t *const c = find_container(where, what.number_at(0));
		// This command has its own words for it.
		if (!c)
			throw command_error("Container not found.");
		table.add_container(*c);
		at.answer = table.lines;
		return;
	}
	for (int number = 0; number < FIRST_MEMBER_NUMBER; number++) {
		if (const container_t *const c = find_container(where, number))
			table.add_container(*c);
	}
	at.answer = table.lines;
}

void container_show_failover(context_t &at, const command_t &what)
{
	what.expect_operands(1, 1);
	const container_t &c = require_container(at.open_controller(), what.number_at(0));
	at.answer = {"Container    Scsi C:ID:L", "--------- ----------------------------------"};
	if (c.spares.empty()) {
		at.answer.push_back(fmt::format("{:>5}     --- No Devices Assigned ---", c.number));
		return;
	}
	std::string row = fmt::format("{:>5}     ", c.number);
	for (const address_t &spare : c.spares)
		row += " " + address_text(spare);
	at.answer.push_back(row);
}

static bool is_spare(const container_t &c, const address_t &disk)
{
	return std::find(c.spares.begin(), c.spares.end(), disk) != c.spares.end();
}

static void add_spare(controller_t &where, container_t &c, const address_t &disk)
{
	if (!is_initialised(require_storage(where, disk)))
		throw command_error("The specified disk is not initialized.");
	if (is_spare(c, disk))
		throw command_error("The specified device is already a failover disk of the container.");
	for (const piece_t &p : c.pieces) {
		if (p.at == disk)
			throw command_error("The specified device is a member of the container.");
	}
	c.spares.push_back(disk);
}

void container_set_failover(context_t &at, const command_t &what)
{
	what.expect_operands(2, SIZE_MAX);
	controller_t &where = at.open_controller();
	container_t &c = require_container(where, what.number_at(0));
	if (c.type != "Mirror" && c.type != "RAID-5")
		throw command_error("The specified container has no redundancy.");
	for (std::size_t i = 1; i < what.operands().size(); i++)
		add_spare(where, c, what.address_at(i));
}

void container_remove_failover(context_t &at, const command_t &what)
{
	what.expect_operands(2, SIZE_MAX);
	controller_t &where = at.open_controller();
	container_t &c = require_container(where, what.number_at(0));
	for (std::size_t i = 1; i < what.operands().size(); i++) {
		const address_t disk = what.address_at(i);
		require_disk(where, disk);
		// The controller's own spelling.
		if (!is_spare(c, disk))
			throw command_error("At least one of devices you specified is not a fialover disk.");
		c.spares.erase(std::find(c.spares.begin(), c.spares.end(), disk));
	}
}

void container_delete(context_t &at, const command_t &what)
{
	what.expect_operands(1, 1);
	controller_t &where = at.open_controller();
	const container_t &c = require_container(where, what.number_at(0));
	if (c.parent >= 0)
		throw command_error("The specified container is a member of another container.");
	if (c.data && !what.truth("always"))
		throw command_error("The specified container is in use.");
	remove_container(where, c.number);
}
