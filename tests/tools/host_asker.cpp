// SPDX-License-Identifier: Apache-2.0
// A program of the tests, made of what all our programs share: whose storage it is shown, and of what kind is
// what it is refused.
//
//   host_asker running              host_asker library FILE SYMBOL
//   host_asker thrown DIR           host_asker configuration FILE NAME
//   host_asker told DIR             host_asker companion NAME
//   host_asker captured
#include "companion.h"
#include "host_names.h"
#include "loaded_plugin.h"
#include "output.h"
#include "program.h"
#include "sysroot.h"
#include "usage_error.h"

#include <cstdlib>
#include <fmt/format.h>
#include <map>
#include <vector>

const char PROGRAM_NAME[] = "host_asker";

using words_t = std::vector<std::string>;

static void tell_names(bool captured)
{
	const host_names_t names = host_names(captured);
	write_output(
		fmt::format("{}\n{}\n", names.name.value_or("unknown"), names.kernel.value_or("unknown")));
}

static void replayed(const words_t &)
{
	expect_captured_host();
	if (getenv("REPLAY_FAULT"))
		throw std::logic_error("whom this program starts would be taken for one that asks");
	tell_names(true);
}

static const std::map<std::string, void (*)(const words_t &words)> ACTIONS = {
	{"running", [](const words_t &) { tell_names(false); }},
	{"captured", [](const words_t &) { tell_names(true); }},
	{"thrown",
         [](const words_t &words) {
		 restart_on_captured_host(words.at(2), {words[0], "replayed"}, host_fault_t::THROWN);
	 }},
	{"told",
         [](const words_t &words) {
		 restart_on_captured_host(words.at(2), {words[0], "replayed"});
	 }},
	{"replayed", replayed},
	{"library",
         [](const words_t &words) {
		 (void)loaded_plugin_t(plugin_file(words.at(2))).symbol<void()>(words.at(3).c_str());
	 }},
	{"configuration",
         [](const words_t &words) {
		 loaded_plugin_t(plugin_file(words.at(2))).set_configuration(words.at(3));
	 }},
	{"companion", [](const words_t &words) { (void)find_companion(words.at(2)); }},
};

static int refused(const char *kind, const std::exception &error)
{
	complain(fmt::format("{}: {}", kind, error.what()));
	return STATUS_USAGE;
}

static int run(int argc, char **argv)
{
	const words_t words(argv, argv + argc);
	try {
		ACTIONS.at(words.at(1))(words);
		return STATUS_FINE;
	} catch (const plugin_error_t &error) {
		return refused("plug-in", error);
	} catch (const captured_host_error_t &error) {
		return refused("captured host", error);
	} catch (const usage_error_t &error) {
		return refused("usage", error);
	}
}

int main(int argc, char **argv)
{
	return run_program(run, argc, argv);
}
