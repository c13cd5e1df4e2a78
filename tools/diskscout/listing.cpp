// SPDX-License-Identifier: Apache-2.0
// The listing of the kinds that were asked for.
#include "listing.h"

#include "asking.h"
#include "columns.h"
#include "document.h"
#include "drawing.h"
#include "heading.h"
#include "kind_sets.h"
#include "output.h"
#include "pairs.h"
#include "program.h"
#include "terminal.h"
#include "unused.h"

#include <algorithm>
#include <fmt/format.h>
#include <unistd.h>

static void complain_about(const messages_t &messages, severity_t from)
{
	for (const message_t &message : messages) {
		if (message.severity >= from)
			complain(message.text);
	}
}

static int status_of(const messages_t &messages)
{
	return has_error(messages) ? STATUS_FAILED : STATUS_FINE;
}

listing_t list_as_document(enquiry_t &from, const options_t &opts, const host_names_t &host)
{
	messages_t messages;
	const sections_t sections = ask_all(from, opts, messages);
	document_t document(host);
	if (has(opts.kinds, is_of_controller))
		document.controller(from.controller());
	for (const section_t &section : sections)
		document.list(*section.kind, section.answer);
	complain_about(messages, severity_t::ERROR);
	const int status = status_of(messages);
	return {document.end(messages, status), status};
}

// ---- tables ----

static table_t table_with(const columns_t &columns, const section_t &section, enquiry_t &from,
                          const options_t &opts)
{
	const sizes_t sizes = opts.bytes ? sizes_t::IN_BYTES : sizes_t::IN_UNITS;
	table_t table = section.kind == &DEVICES_KIND && opts.draws_tree()
	                        ? draw_tree(columns, section.answer.rows, from, opts.inverse, sizes)
	                        : draw_rows(columns, section.answer.rows, sizes);
	table.has_headings = !opts.no_headings;
	return table;
}

// What the queries tell of a RAID controller is shown as it was before the operations told more.
static bool is_as_before(const kind_t &kind, const options_t &opts)
{
	return opts.classic && is_of_controller(&kind);
}

static std::string table_of(const section_t &section, enquiry_t &from, const options_t &opts)
{
	const auto draw = [&](const columns_t &columns) { return table_with(columns, section, from, opts); };
	const bool as_before = is_as_before(*section.kind, opts);
	const columns_t columns = columns_of(*section.kind, opts.columns, as_before);
	if (!opts.columns.empty() || opts.no_headings || as_before)
		return format_table(draw(columns), terminal_columns(STDOUT_FILENO));
	return fitted_table(columns, spare_columns_of(*section.kind), draw);
}

static std::string pairs_of(const section_t &section, const options_t &opts)
{
	const columns_t columns = columns_of(*section.kind, opts.columns, is_as_before(*section.kind, opts));
	std::string text;
	for (const row_t &row : section.answer.rows)
		text += pairs_line(columns, row);
	return text;
}

static bool is_below_its_table(const message_t &message)
{
	return message.severity != severity_t::ERROR || message.code == code_t::LIST_CUT;
}

// Under the tables stands what is about this kind; null: about none of those that have a table.
static std::string messages_about(const kind_t *kind, const messages_t &messages, const kinds_t &drawn)
{
	std::string text;
	for (const message_t &message : messages) {
		const bool has_table = std::find(drawn.begin(), drawn.end(), message.kind) != drawn.end();
		if ((has_table ? message.kind : nullptr) == kind && is_below_its_table(message))
			text += message.text + ".\n";
	}
	return text;
}

static std::string body_of(section_t &section, enquiry_t &from, const options_t &opts)
{
	// A message tells why.
	if (is_of_another_time(section, from, opts))
		return "";
	const bool is_overview = opts.is_alone && section.kind == &DEVICES_KIND;
	const std::string unused = is_overview ? take_out_unused(section.answer.rows) : "";
	if (section.answer.rows.empty())
		return nothing_of(section, from) + unused;
	const bool as_before = is_as_before(*section.kind, opts);
	return table_of(section, from, opts) + unused + (as_before ? old_note_of(*section.kind) : "");
}

// Of those that nobody named, only what there is.
static bool is_drawn(const section_t &section, const options_t &opts)
{
	if (!opts.is_alone || opts.classic || !section.answer.rows.empty())
		return true;
	return section.answer.failed || (section.kind->unasked & WHEN_ANY) == 0;
}

static std::string rows_alone(section_t &section, enquiry_t &from, const options_t &opts)
{
	if (section.answer.rows.empty())
		return "";
	if (opts.pairs)
		return pairs_of(section, opts);
	return table_of(section, from, opts);
}

static std::string with_headings(sections_t &sections, enquiry_t &from, const options_t &opts,
                                 const messages_t &messages)
{
	std::string text;
	kinds_t drawn;
	for (const section_t &section : sections) {
		if (is_drawn(section, opts))
			drawn.push_back(section.kind);
	}
	for (section_t &section : sections) {
		if (is_drawn(section, opts))
			text += (text.empty() ? "" : "\n") + heading_of(*section.kind, from) +
			        body_of(section, from, opts) + messages_about(section.kind, messages, drawn);
	}
	const std::string rest = messages_about(nullptr, messages, drawn);
	return text + (text.empty() || rest.empty() ? "" : "\n") + rest;
}

listing_t list_as_tables(enquiry_t &from, const options_t &opts)
{
	messages_t messages;
	sections_t sections = ask_all(from, opts, messages);
	if (!opts.sort.empty())
		sort_by(column_of(*opts.kinds.front(), opts.sort), sections.front().answer.rows);
	const bool is_rows_alone = opts.pairs || opts.no_headings;
	const std::string text = is_rows_alone ? rows_alone(sections.front(), from, opts)
	                                       : with_headings(sections, from, opts, messages);
	complain_about(messages, is_rows_alone ? severity_t::WARNING : severity_t::ERROR);
	return {text, status_of(messages)};
}
