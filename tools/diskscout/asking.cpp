// The kinds that were asked for.
#include "asking.h"

#include "diagnosis.h"
#include "partition_query.h"
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
	return kind.side == side_t::CONTROLLER && !from.controller();
}

answer_t ask(const kind_t &kind, enquiry_t &from)
{
	if (!lacks_controller(kind, from))
		return kind.ask(from);
	answer_t nothing;
	nothing.failed = from.controllers().failed();
	nothing.where = " at the list of controllers";
	return nothing;
}

std::string failure_of(const section_t &section)
{
	const char *const rest =
		section.answer.rows.empty() ? "it found nothing before" : "what it found so far is shown";
	return fmt::format("the {} query failed{}; {}", section.kind->name, section.answer.where, rest);
}

static void find_cause(section_t &section, enquiry_t &from)
{
	answer_t &answer = section.answer;
	if (section.kind->side == side_t::BLOCK && answer.error)
		answer.where = fmt::format(": {}", strerror(answer.error));
	if (section.kind == &PARTITIONS_KIND)
		answer.where = fmt::format(": {}", partition_failure(from));
}

bool is_of_another_time(const section_t &section, const options_t &opts)
{
	return opts.is_alone && section.kind->side == side_t::BLOCK && section.answer.error == ENOENT;
}

static void add_failures(sections_t &sections, enquiry_t &from, const options_t &opts, messages_t &messages)
{
	bool hardware_failed = false;
	for (section_t &section : sections) {
		if (lacks_controller(*section.kind, from) && !section.answer.failed)
			messages.push_back({severity_t::NOTE, section.kind, code_t::NO_CONTROLLER,
			                    "no RAID controller was found"});
		if (!section.answer.failed)
			continue;
		if (is_of_another_time(section, opts)) {
			if (section.kind == &DEVICES_KIND)
				messages.push_back(
					{severity_t::NOTE, section.kind, code_t::NO_SYSFS,
				         "this host has no /sys: devices of today cannot be told"});
			continue;
		}
		find_cause(section, from);
		messages.push_back(
			{severity_t::ERROR, section.kind, code_t::QUERY_FAILED, failure_of(section)});
		hardware_failed |=
			section.kind->side == side_t::RAID || section.kind->side == side_t::CONTROLLER;
	}
	// One cause, most probably: one hint.
	if (hardware_failed)
		messages.push_back({severity_t::ERROR, nullptr, code_t::QUERY_FAILED, diagnosis(from)});
}

static void keep(const names_t &names, section_t &section)
{
	auto &rows = section.answer.rows;
	const auto is_of_others = [&](const row_t &row) { return !section.kind->concerns(row, names); };
	rows.erase(std::remove_if(rows.begin(), rows.end(), is_of_others), rows.end());
}

static bool has_devices(const kinds_t &kinds)
{
	return std::find(kinds.begin(), kinds.end(), &DEVICES_KIND) != kinds.end();
}

sections_t ask_all(enquiry_t &from, const options_t &opts, messages_t &messages)
{
	sections_t sections;
	names_t names;
	if (!opts.devices.empty())
		names = devices_behind(opts.devices, opts.inverse, from);
	for (const kind_t *kind : opts.kinds) {
		sections.push_back({kind, ask(*kind, from)});
		if (!opts.devices.empty())
			keep(names, sections.back());
	}
	add_failures(sections, from, opts, messages);
	if (!opts.classic) {
		for (message_t &reason : withheld(sections, opts))
			messages.push_back(std::move(reason));
		for (message_t &reason : reasons(from, opts.kinds, has_devices(opts.kinds)))
			messages.push_back(std::move(reason));
	}
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
