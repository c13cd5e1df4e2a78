// diskscout: an inventory of this host's storage, for people and as JSON. It is also the reference agent: the
// plug-in is loaded, asked and given its lists back as every agent has to do it.
//
// Exit status: 0; 1 when a query or the output failed; 2 when the caller asked for what cannot be done.
#include "companion.h"
#include "kinds.h"
#include "options.h"
#include "output.h"
#include "plugin.h"
#include "sysroot.h"
#include "usage_error.h"

#include <fmt/format.h>

enum { STATUS_FINE = 0, STATUS_FAILED = 1, STATUS_USAGE = 2 };

static void complain_about_query(const kind &k, const item_list &list)
{
	const char *const rest = list.empty() ? "it found nothing before" : "what it found so far is shown";
	complain(fmt::format("the {} query failed; {}", k.name, rest));
}

static std::string section_of(const kind &k, const item_list &list)
{
	std::string section = fmt::format("{}\n", k.heading);
	if (!list.empty())
		section += k.table(list);
	else if (list.failed())
		// That nothing was found would be a false answer.
		section += fmt::format("The {} query failed.\n", k.name);
	else
		section += fmt::format("{}\n", k.none);
	return section;
}

static std::string document_of(const ordered_json &document)
{
	// A disk's texts need not be UTF-8. A replaced character is better than no document.
	return document.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

static int show(const plugin &from, const options &opts)
{
	std::string tables;
	ordered_json document = {{"format", 1}};
	ordered_json failed = ordered_json::array();
	for (const kind *k : opts.kinds) {
		const item_list list(from, k->query);
		if (list.failed()) {
			complain_about_query(*k, list);
			failed.push_back(k->word);
		}
		document[std::string(k->word)] = k->json(list);
		tables += (tables.empty() ? "" : "\n") + section_of(*k, list);
	}
	const bool complete = failed.empty();
	document["failed"] = failed;
	const bool written = write_output(opts.json ? document_of(document) : tables);
	return complete && written ? STATUS_FINE : STATUS_FAILED;
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
