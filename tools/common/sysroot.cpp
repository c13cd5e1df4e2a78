// SPDX-License-Identifier: Apache-2.0
// Captured hosts. The plug-in makes plain calls of the C library and knows nothing of captured hosts; a
// library that answers these calls instead can only be loaded before the program starts.
#include "sysroot.h"

#include "companion.h"
#include "cut_library.h"
#include "usage_error.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace fs = std::filesystem;

static void set_variable(const char *name, const std::string &value)
{
	if (setenv(name, value.c_str(), 1) != 0)
		throw std::bad_alloc();
}

static std::string get_variable(const char *name)
{
	const char *const value = getenv(name);
	return value ? value : "";
}

/*
 * A name by which the loader finds the library. Blanks and colons end a name there, and nothing quotes them:
 * such a library is named by a descriptor, which the second start and its children inherit. It stands out of
 * the way of the low ones that a shell hands out.
 */
static std::string loadable_name(const fs::path &library)
{
	constexpr int LEAST = 100;
	if (library.string().find_first_of(" :") == std::string::npos)
		return library.string();
	const int opened = open(library.c_str(), O_RDONLY | O_CLOEXEC);
	if (opened < 0)
		throw captured_host_error_t(
			fmt::format("{} cannot be opened: {}", library.string(), strerror(errno)));
	int held = fcntl(opened, F_DUPFD, LEAST);
	if (held < 0)
		held = fcntl(opened, F_DUPFD, STDERR_FILENO + 1);
	close(opened);
	return fmt::format("/proc/self/fd/{}", held);
}

static void preload(const fs::path &library)
{
	if (is_cut_library(library))
		throw captured_host_error_t(
			fmt::format("{} cannot be loaded: its end is missing", library.string()));
	const std::string others = get_variable("LD_PRELOAD");
	const std::string ours = loadable_name(library);
	set_variable("LD_PRELOAD", others.empty() ? ours : ours + ":" + others);
#ifdef __SANITIZE_ADDRESS__
	// The sanitizer refuses to start behind a preload. Ours passes on every call that it does not answer.
	const std::string options = get_variable("ASAN_OPTIONS");
	set_variable("ASAN_OPTIONS", (options.empty() ? "" : options + ":") + "verify_asan_link_order=0");
#endif
}

/*
 * With this the library keeps a fault of the host for expect_captured_host(). Without, it tells it and ends
 * the program: one that does not ask would go on and show the running host.
 */
static const char FAULT_VARIABLE[] = "REPLAY_FAULT";

static void announce(host_fault_t fault)
{
	if (fault == host_fault_t::THROWN)
		set_variable(FAULT_VARIABLE, "keep");
	else
		unsetenv(FAULT_VARIABLE);
}

// Packages have it apart from the programs.
static fs::path replay_library()
{
	try {
		return find_companion("diskscout-replay.so");
	} catch (const plugin_error_t &error) {
		throw captured_host_error_t(fmt::format("{} (Debian: package diskscout-sim)", error.what()));
	}
}

void restart_on_captured_host(const std::string &directory, std::vector<std::string> arguments,
                              host_fault_t fault)
{
	const auto as_host_error = [](auto work) { return refused_as<captured_host_error_t>(work); };
	const fs::path host = as_host_error([&] { return absolute_path(directory); });
	std::error_code error;
	if (!fs::is_regular_file(host / "host.txt", error))
		throw captured_host_error_t(
			fmt::format("{} is no captured host: it has no host.txt", directory));
	preload(as_host_error(replay_library));
	// The caller's environment may name another host; this one was asked for.
	set_variable("REPLAY_SYSROOT", host.string());
	announce(fault);

	std::vector<char *> argv;
	argv.reserve(arguments.size() + 1);
	for (std::string &argument : arguments)
		argv.push_back(argument.data());
	argv.push_back(nullptr);
	execv("/proc/self/exe", argv.data());
	throw captured_host_error_t(fmt::format("the program cannot be started anew: {}", strerror(errno)));
}

bool shows_captured_host()
{
	return dlsym(RTLD_DEFAULT, "replay_use");
}

void expect_captured_host()
{
	using fault_t = const char *();
	if (!shows_captured_host())
		throw captured_host_error_t(
			"the replay library was not loaded, so the captured host cannot be shown");
	// Whom we start does not ask.
	unsetenv(FAULT_VARIABLE);
	const auto fault = reinterpret_cast<fault_t *>(dlsym(RTLD_DEFAULT, "replay_fault"));
	if (fault && fault())
		throw captured_host_error_t(fault());
}
