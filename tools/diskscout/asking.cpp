// SPDX-License-Identifier: Apache-2.0
// The kinds that were asked for.
#include "asking.h"

#include "columns.h"
#include "diskscout_block.h"
#include "examination.h"
#include "kind_sets.h"
#include "machine.h"
#include "partition_query.h"
#include "raid_site.h"
#include "reasons.h"
#include "selection.h"
#include "text.h"
#include "withheld.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>

bool lacks_controller(const kind_t &kind, enquiry_t &from)
{
	return is_of_controller(&kind) && from.raid().names().empty();
}

answer_t ask(const kind_t &kind, enquiry_t &from)
{
	if (!lacks_controller(kind, from))
		return kind.ask(from);
	answer_t nothing;
	nothing.failed = from.controllers().failed();
	nothing.timed_out = from.controllers().timed_out();
	const std::string &failure = from.controllers().failure();
	nothing.where = " at the list of controllers" + (failure.empty() ? "" : ": " + failure);
	return nothing;
}

std::string failure_of(const section_t &section)
{
	const char *const rest =
		section.answer.rows.empty() ? "it found nothing before" : "what it found so far is shown";
	return fmt::format("the {} query failed{}; {}", section.kind->name, section.answer.where, rest);
}

static std::string cause_of(int error)
{
	return error ? fmt::format(": {}", strerror(error)) : "";
}

// Their tables are read once more for it.
static std::string cause_of_partitions(enquiry_t &from)
{
	from.list(CMD_GET_DISKS);
	const worked_t worked =
		from.work("partition tables", enquiry_t::place_t::HERE,
	                  [&](const worker_link_t &to) { to.result(partition_failure(from)); });
	return worked.is_done ? std::string(worked.text()) : worked.failure;
}

static void find_cause(section_t &section, enquiry_t &from)
{
	answer_t &answer = section.answer;
	if (!answer.where.empty())
		return;
	if (is_block(section.kind) && answer.error)
		answer.where = cause_of(answer.error);
	if (section.kind == &PARTITIONS_KIND)
		answer.where = fmt::format(": {}", cause_of_partitions(from));
}

message_t message_of_failure(section_t &section, enquiry_t &from)
{
	find_cause(section, from);
	return {severity_t::ERROR, section.kind,
	        section.answer.timed_out ? code_t::TIMED_OUT : code_t::QUERY_FAILED, failure_of(section)};
}

bool is_of_another_time(const section_t &section, enquiry_t &from, const options_t &opts)
{
	return opts.is_alone && is_block(section.kind) && section.answer.error == ENOENT &&
	       from.block_list(CMD_GET_BLOCK_DEVICES).error() == ENOENT;
}

static void add_failure(section_t &section, enquiry_t &from, const options_t &opts, messages_t &messages)
{
	if (!is_of_another_time(section, from, opts)) {
		messages.push_back(message_of_failure(section, from));
	} else if (section.kind == &DEVICES_KIND) {
		messages.push_back({severity_t::NOTE, section.kind, code_t::NO_SYSFS,
		                    "this host has no /sys: devices of today cannot be told"});
	}
}

static void add_failures(sections_t &sections, enquiry_t &from, const options_t &opts, messages_t &messages)
{
	for (section_t &section : sections) {
		if (lacks_controller(*section.kind, from) && !section.answer.failed)
			messages.push_back({severity_t::NOTE, section.kind, code_t::NO_CONTROLLER,
			                    "no RAID controller was found"});
		if (section.answer.failed)
			add_failure(section, from, opts, messages);
	}
}

// Notes of what is empty by its nature lead nowhere.
static bool is_short(const section_t &section, enquiry_t &from, const options_t &opts,
                     const messages_t &messages)
{
	if (opts.classic || !is_of_host(section.kind))
		return false;
	return std::any_of(messages.begin(), messages.end(), [&](const message_t &m) {
		return m.kind == section.kind && (m.severity != severity_t::NOTE || is_judged(from));
	});
}

// Of a tool that prints what no tool of this kind prints it is read as well that it lists none.
static bool finds_no_controller(const section_t &section, enquiry_t &from, const options_t &opts)
{
	if (opts.classic || section.answer.failed)
		return false;
	return section.kind == &CONTROLLERS_KIND ? section.answer.rows.empty()
	                                         : lacks_controller(*section.kind, from);
}

// Those that failed; where none has, those that the reasons name.
static kinds_t kinds_to_ask_about(const sections_t &sections, enquiry_t &from, const options_t &opts,
                                  const messages_t &messages)
{
	kinds_t failed, cut;
	for (const section_t &section : sections) {
		if (section.answer.failed && !is_of_another_time(section, from, opts))
			failed.push_back(section.kind);
		else if (finds_no_controller(section, from, opts) || is_short(section, from, opts, messages))
			cut.push_back(section.kind);
	}
	return failed.empty() ? cut : failed;
}

// One cause, most probably: one line.
static void add_leading_line(const sections_t &sections, enquiry_t &from, const options_t &opts,
                             messages_t &messages)
{
	const kinds_t kinds = kinds_to_ask_about(sections, from, opts, messages);
	if (kinds.empty())
		return;
	const bool has_failed = std::any_of(messages.begin(), messages.end(), [&](const message_t &m) {
		return m.severity == severity_t::ERROR &&
		       std::find(kinds.begin(), kinds.end(), m.kind) != kinds.end();
	});
	const finding_t found = leading_finding(kinds, from);
	// Nobody has asked for notes of what did not fail.
	if (found.text.empty() || (found.verdict == verdict_t::FINE && !has_failed))
		return;
	messages.push_back(
		{has_failed ? severity_t::ERROR : severity_t::WARNING, nullptr,
	         found.verdict == verdict_t::PROBLEM ? code_t::PROBLEM_FOUND : code_t::WARNING_FOUND,
	         found.text});
}

static bool is_asked(const kind_t &kind, const options_t &opts)
{
	return std::find(opts.kinds.begin(), opts.kinds.end(), &kind) != opts.kinds.end();
}

static bool needs_mounts(const options_t &opts)
{
	static constexpr std::string_view PLACES = "mount_points";
	return has_column(DEVICES_KIND, opts.columns, PLACES) ||
	       (!opts.sort.empty() && column_of(DEVICES_KIND, opts.sort).key == PLACES);
}

// The table of the devices is drawn with lists of others. Without them it would lack something silently.
static void add_failures_beside(const section_t &devices, enquiry_t &from, const options_t &opts,
                                messages_t &messages)
{
	if (devices.answer.failed || opts.json)
		return;
	const auto ask_beside = [&](const kind_t &kind) {
		section_t section = {&kind, ask(kind, from)};
		if (section.answer.failed && !is_asked(kind, opts))
			add_failure(section, from, opts, messages);
	};
	if (opts.draws_tree())
		ask_beside(LINKS_KIND);
	if (needs_mounts(opts))
		ask_beside(MOUNTS_KIND);
}

static void keep(const names_t &names, section_t &section)
{
	auto &rows = section.answer.rows;
	const auto is_of_others = [&](const row_t &row) { return !section.kind->concerns(row, names); };
	rows.erase(std::remove_if(rows.begin(), rows.end(), is_of_others), rows.end());
}

// What concerns a named device is told by two lists. Without one of them nobody can say.
static std::string list_that_failed(enquiry_t &from)
{
	struct needed_t {
		UINT query;
		const char *what;
	};
	for (const needed_t needed :
	     {needed_t{CMD_GET_BLOCK_DEVICES, "devices"}, needed_t{CMD_GET_BLOCK_LINKS, "links"}}) {
		const item_list_t &list = from.block_list(needed.query);
		if (list.failed())
			return fmt::format(" at the list of {}{}", needed.what,
			                   list.failure().empty() ? cause_of(list.error())
			                                          : ": " + list.failure());
	}
	return "";
}

static sections_t ask_kinds(enquiry_t &from, const options_t &opts)
{
	sections_t sections;
	const bool are_named = !opts.devices.empty();
	const std::string failed = are_named ? list_that_failed(from) : "";
	names_t names;
	if (are_named && failed.empty())
		names = devices_behind(opts.devices, opts.inverse, from);
	for (const kind_t *kind : opts.kinds) {
		if (!failed.empty()) {
			sections.push_back({kind, {true, false, 0, failed}});
			continue;
		}
		sections.push_back({kind, ask(*kind, from)});
		if (are_named)
			keep(names, sections.back());
	}
	return sections;
}

// Nodes and the kernel's tables are looked at for them, any of which may hang. So may a list that nobody has
// asked for yet, which shall leave time for the others.
static void add_reasons(enquiry_t &from, const options_t &opts, messages_t &messages)
{
	if (!has(opts.kinds, is_of_host))
		return;
	const auto look = [&](const worker_link_t &to) {
		from.set_limit(from.limit() * 3 / 4);
		to.result(packed(reasons(from, opts.kinds, is_asked(DEVICES_KIND, opts))));
	};
	const worked_t worked = from.work("what lists leave out", enquiry_t::place_t::HERE, look);
	for (message_t &reason : unpacked_messages(worked.text()))
		messages.push_back(std::move(reason));
	if (!worked.is_done) {
		messages.push_back(
			{severity_t::WARNING, nullptr,
		         worked.is_timed_out ? code_t::TIMED_OUT : code_t::QUERY_FAILED,
		         fmt::format("why lists are short could not be told: {}", worked.failure)});
	}
}

messages_t left_behind(const enquiry_t &from)
{
	messages_t messages;
	for (const pid_t pid : from.left_behind())
		messages.push_back({severity_t::WARNING, nullptr, code_t::LEFT_BEHIND,
		                    fmt::format("process {} cannot be ended: it waits in the kernel", pid)});
	return messages;
}

sections_t ask_all(enquiry_t &from, const options_t &opts, messages_t &messages)
{
	sections_t sections = ask_kinds(from, opts);
	add_failures(sections, from, opts, messages);
	for (const section_t &section : sections) {
		if (section.kind == &DEVICES_KIND)
			add_failures_beside(section, from, opts, messages);
	}
	if (!opts.classic) {
		for (message_t &reason : withheld(sections, from, opts))
			messages.push_back(std::move(reason));
		add_reasons(from, opts, messages);
	}
	add_leading_line(sections, from, opts, messages);
	for (message_t &told : left_behind(from))
		messages.push_back(std::move(told));
	// Names of devices and of controllers stand in them.
	for (message_t &message : messages)
		message.text = printable(message.text);
	return sections;
}

bool has_error(const messages_t &messages)
{
	return std::any_of(messages.begin(), messages.end(),
	                   [](const message_t &m) { return m.severity == severity_t::ERROR; });
}
