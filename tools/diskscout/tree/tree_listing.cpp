// SPDX-License-Identifier: Apache-2.0
// The whole machine as one picture, or as one document.
#include "tree_listing.h"

#include "document.h"
#include "local_part.h"
#include "output.h"
#include "picture.h"
#include "program.h"
#include "raid_part.h"
#include "text.h"

#include <fmt/format.h>

namespace
{
struct asked_t {
	machine_tree_t machine;
	std::string left_out; // a line, empty when nothing was
	messages_t messages;
};
} // namespace

static void ask(enquiry_t &from, const options_t &opts, asked_t &asked)
{
	const claims_t claims = add_raid_part(asked.machine, from, opts, asked.messages);
	asked.left_out = add_local_part(asked.machine, claims, {!opts.json}, from, asked.messages);
	for (message_t &told : left_behind(from))
		asked.messages.push_back(std::move(told));
	// Names of devices and of controllers stand in them.
	for (message_t &message : asked.messages) {
		message.text = printable(message.text);
		if (message.severity == severity_t::ERROR)
			complain(message.text);
	}
}

static int status_of(const messages_t &messages)
{
	return has_error(messages) ? STATUS_FAILED : STATUS_FINE;
}

listing_t tree_as_picture(enquiry_t &from, const options_t &opts)
{
	asked_t asked;
	ask(from, opts, asked);
	const sizes_t sizes = opts.bytes ? sizes_t::IN_BYTES : sizes_t::IN_UNITS;
	std::string text =
		fmt::format("{}\n{}{}", TREE_KIND.heading, picture_of(asked.machine, sizes), asked.left_out);
	for (const message_t &message : asked.messages) {
		if (message.severity != severity_t::ERROR)
			text += message.text + ".\n";
	}
	return {text, status_of(asked.messages)};
}

listing_t tree_as_document(enquiry_t &from, const options_t &opts, const host_names_t &host)
{
	asked_t asked;
	ask(from, opts, asked);
	asked.machine.tell_parents();
	answer_t answer;
	for (const tree_row_t &row : asked.machine.rows(TREE_OF_ASCII)) {
		if (!row.is_repeated)
			answer.rows.push_back({&asked.machine.at(row.node), &from});
	}
	document_t document(host);
	document.list(TREE_KIND, answer);
	const int status = status_of(asked.messages);
	return {document.end(asked.messages, status), status};
}
