// diskscout: an inventory of this host's storage, for people and as JSON. It is also the reference agent: the
// plug-in is loaded, asked and given its lists back as every agent has to do it.
//
// Exit status: 0; 1 when a query or the output failed; 2 when the caller asked for what cannot be done.
#include "listing.h"
#include "options.h"
#include "output.h"
#include "plugin.h"
#include "program.h"
#include "sysroot.h"

const char PROGRAM_NAME[] = "diskscout";

static int show(const plugin_t &from, const options_t &opts)
{
	if (!opts.config.empty())
		from.set_configuration(opts.config);
	enquiry_t asked(from, opts.controller);
	const listing_t shown =
		opts.json ? list_as_json(asked, opts.kinds) : list_as_tables(asked, opts.kinds);
	const bool written = write_output(shown.text);
	return shown.complete && written ? STATUS_FINE : STATUS_FAILED;
}

static int run(int argc, char **argv)
{
	const options_t opts = parse_options(argc, argv);
	if (!opts.answer.empty())
		return write_output(opts.answer) ? STATUS_FINE : STATUS_FAILED;

	const auto file = plugin_file(opts.plugin);
	if (!opts.sysroot.empty())
		restart_on_captured_host(opts.sysroot, replayed_command_line(opts, argv[0], file.string()));
	if (opts.replayed)
		expect_captured_host();
	return show(plugin_t(file), opts);
}

int main(int argc, char **argv)
{
	return run_program(run, argc, argv);
}
