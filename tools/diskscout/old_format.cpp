// SPDX-License-Identifier: Apache-2.0
// Tables and document as they were before there were formats: agents' scripts rely on every byte.
#include "asking.h"
#include "columns.h"
#include "drawing.h"
#include "examination.h"
#include "heading.h"
#include "json_writer.h"
#include "kind_sets.h"
#include "listing.h"
#include "output.h"
#include "program.h"

#include <functional>

using visitor_t = std::function<void(const section_t &section)>;

// Words of the kinds whose query failed.
static std::vector<std::string_view> visit_all(enquiry_t &from, const kinds_t &kinds, const visitor_t &visit)
{
	std::vector<std::string_view> failed;
	kinds_t failed_hardware;
	for (const kind_t *kind : kinds) {
		const section_t section = {kind, ask(*kind, from)};
		visit(section);
		if (!section.answer.failed)
			continue;
		complain(failure_of(section));
		failed.push_back(kind->old_word);
		if (is_of_raid(kind))
			failed_hardware.push_back(kind);
	}
	// One cause, most probably: one hint.
	const std::string hint = failed_hardware.empty() ? "" : leading_finding(failed_hardware, from).text;
	if (!hint.empty())
		complain(hint);
	return failed;
}

static listing_t as_tables(enquiry_t &from, const kinds_t &kinds)
{
	std::string text;
	const auto failed = visit_all(from, kinds, [&](const section_t &section) {
		const kind_t &kind = *section.kind;
		text += (text.empty() ? "" : "\n") + heading_of(kind, from);
		if (section.answer.rows.empty())
			text += nothing_of(section, from);
		else
			text += format_table(draw_rows(old_columns_of(kind), section.answer.rows,
			                               sizes_t::IN_UNITS)) +
			        old_note_of(kind);
	});
	return {text, failed.empty() ? STATUS_FINE : STATUS_FAILED};
}

static listing_t as_document(enquiry_t &from, const kinds_t &kinds)
{
	std::string text;
	json_writer_t to(text);
	to.begin_object();
	to.key("format");
	to.number(1);
	if (has(kinds, is_of_controller)) {
		const std::optional<std::string> controller = from.controller();
		to.key("controller");
		if (controller)
			to.text(*controller);
		else
			to.absent();
	}
	const auto failed = visit_all(from, kinds, [&](const section_t &section) {
		to.key(section.kind->old_word);
		to.begin_list();
		for (const row_t &row : section.answer.rows)
			put_object(section.kind->fields, OLD, row, to);
		to.end_list();
	});
	to.key("failed");
	to.begin_list();
	for (const std::string_view word : failed)
		to.text(word);
	to.end_list();
	to.end_object();
	return {text + "\n", failed.empty() ? STATUS_FINE : STATUS_FAILED};
}

listing_t list_in_old_format(enquiry_t &from, const options_t &opts)
{
	return opts.json ? as_document(from, opts.kinds) : as_tables(from, opts.kinds);
}
