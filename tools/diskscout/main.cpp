// SPDX-License-Identifier: Apache-2.0
// diskscout: an inventory of this host's storage, for people and as JSON. It is also the reference agent: the
// plug-ins are loaded, asked and given their lists back as every agent has to do it.
//
// Exit status: 0; 1 when a query or the output failed, or a list is known to be cut, or doctor has found a
// problem; 2 when the caller asked for what cannot be done; 3 when doctor has found no more than warnings.
#include "document.h"
#include "findings.h"
#include "inherited.h"
#include "keeper.h"
#include "listing.h"
#include "options.h"
#include "output.h"
#include "plugin.h"
#include "program.h"
#include "schema.h"
#include "sysroot.h"
#include "text.h"
#include "tree_listing.h"
#include "usage_error.h"

#include <cerrno>
#include <csignal>
#include <fmt/format.h>

const char PROGRAM_NAME[] = "diskscout";

static int written(const std::string &text, int status)
{
	return write_output(text) ? status : STATUS_FAILED;
}

static listing_t list(enquiry_t &from, const options_t &opts)
{
	if (opts.is_old())
		return list_in_old_format(from, opts);
	if (!opts.json)
		return list_as_tables(from, opts);
	return list_as_document(from, opts, host_names(opts.replayed));
}

static listing_t examine(enquiry_t &from, const options_t &opts)
{
	const told_findings_t found = examine({from, inherited(), opts.agent(), opts.raid}, opts.limit());
	return opts.json ? findings_as_document(found, from, host_names(opts.replayed))
	                 : findings_as_text(found);
}

static listing_t tree(enquiry_t &from, const options_t &opts)
{
	return opts.json ? tree_as_document(from, opts, host_names(opts.replayed))
	                 : tree_as_picture(from, opts);
}

static listing_t shown(enquiry_t &from, const options_t &opts)
{
	switch (opts.command) {
	case command_t::DOCTOR:
		return examine(from, opts);
	case command_t::TREE:
		return tree(from, opts);
	default:
		return list(from, opts);
	}
}

// Whose limits are asked for is most probably misspelt then. Of a captured host's processes nothing is known.
static void refuse_missing_agent(const options_t &opts)
{
	const std::optional<pid_t> agent = opts.agent();
	if (agent && !opts.replayed && kill(*agent, 0) != 0 && errno == ESRCH)
		throw usage_error_t(fmt::format("--pid: there is no process {}", *agent));
}

static int show(const options_t &opts)
{
	// The other plug-in starts no programs: a worker that ends with us is enough for it.
	if (opts.asks_classic())
		start_keeper();
	std::optional<plugin_t> classic, block;
	if (opts.asks_classic())
		classic.emplace(opts.plugin);
	if (opts.asks_block())
		block.emplace(opts.block_plugin);
	if (!opts.config.empty())
		classic->set_configuration(opts.config);
	enquiry_t asked(classic ? &*classic : nullptr, block ? &*block : nullptr, opts.controller,
	                opts.limit());
	asked.set_raid_as_before(opts.classic);
	const listing_t told = shown(asked, opts);
	return written(told.text, told.status);
}

// Reading the command line ended where it asked for this.
static int answer(const options_t &opts, int argc, char **argv)
{
	if (!wants_document(argc, argv))
		return written(opts.answer, STATUS_FINE);
	document_t document(host_names(means_captured_host(argc, argv)));
	return written(
		document.end({{severity_t::NOTE, nullptr, opts.answer_code, opts.answer}}, STATUS_FINE),
		STATUS_FINE);
}

static int run(int argc, char **argv)
{
	options_t opts = parse_options(argc, argv);
	if (opts.command == command_t::ANSWER)
		return answer(opts, argc, argv);
	if (opts.command == command_t::SCHEMA)
		return written(document_schema(), STATUS_FINE);
	if (opts.asks_classic())
		opts.plugin = plugin_file(opts.plugin);
	if (opts.asks_block())
		opts.block_plugin = plugin_file(opts.block_plugin, "diskscout-block.so");
	if (!opts.sysroot.empty())
		restart_on_captured_host(opts.sysroot, replayed_command_line(opts, argv[0]),
		                         opts.is_old() ? host_fault_t::TOLD_BY_LIBRARY
		                                       : host_fault_t::THROWN);
	if (opts.replayed)
		expect_captured_host();
	refuse_missing_agent(opts);
	return show(opts);
}

// What cannot be done is told in a document, too, where one was asked for.
static int in_document(int argc, char **argv)
{
	code_t code = code_t::FAILED;
	int status = STATUS_FAILED;
	std::string text;
	try {
		return run(argc, argv);
	} catch (const plugin_error_t &error) {
		code = code_t::PLUGIN_NOT_LOADED;
		status = STATUS_USAGE;
		text = error.what();
	} catch (const captured_host_error_t &error) {
		code = code_t::CAPTURED_HOST_NOT_LOADED;
		status = STATUS_USAGE;
		text = error.what();
	} catch (const usage_error_t &error) {
		code = code_t::USAGE;
		status = STATUS_USAGE;
		text = error.what();
	} catch (const std::exception &error) {
		text = error.what();
	}
	text = printable(text);
	complain(text);
	document_t document(host_names(means_captured_host(argc, argv)));
	return written(document.end({{severity_t::ERROR, nullptr, code, text}}, status), status);
}

int main(int argc, char **argv)
{
	inherited();
	return run_program(wants_document(argc, argv) ? in_document : run, argc, argv);
}
