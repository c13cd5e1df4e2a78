// diskscout: an inventory of this host's storage, for people and as JSON. It is also the reference agent: the
// plug-in is loaded, asked and given its lists back as every agent has to do it.
//
// Exit status: 0; 1 when a query or the output failed; 2 when the caller asked for what cannot be done.
#include "companion.h"
#include "listing.h"
#include "options.h"
#include "output.h"
#include "plugin.h"
#include "sysroot.h"
#include "usage_error.h"

#include <exception>

enum { STATUS_FINE = 0, STATUS_FAILED = 1, STATUS_USAGE = 2 };

static int show(const plugin &from, const options &opts)
{
	if (!opts.config.empty())
		from.set_configuration(opts.config);
	enquiry asked(from, opts.controller);
	const listing shown = opts.json ? list_as_json(asked, opts.kinds) : list_as_tables(asked, opts.kinds);
	const bool written = write_output(shown.text);
	return shown.complete && written ? STATUS_FINE : STATUS_FAILED;
}

static int run(int argc, char **argv)
{
	const options opts = parse_options(argc, argv);
	if (!opts.answer.empty())
		return write_output(opts.answer) ? STATUS_FINE : STATUS_FAILED;

	const auto file = opts.plugin.empty() ? find_companion("diskscout.so") : absolute_path(opts.plugin);
	if (!opts.sysroot.empty())
		restart_on_captured_host(opts.sysroot, replayed_command_line(opts, argv[0], file.string()));
	// The loader only warns about a preload that it cannot load, and this host is not what was asked for.
	if (opts.replayed && !replay_is_loaded())
		throw usage_error("the replay library was not loaded, so the captured host cannot be shown");
	return show(plugin(file), opts);
}

int main(int argc, char **argv)
{
	occupy_standard_descriptors();
	try {
		return run(argc, argv);
	} catch (const usage_error &error) {
		complain(error.what());
		return STATUS_USAGE;
	} catch (const std::exception &error) {
		complain(error.what());
		return STATUS_FAILED;
	}
}
