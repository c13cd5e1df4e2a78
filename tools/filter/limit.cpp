// SPDX-License-Identifier: Apache-2.0
// diskscout-limit: a site names it as its controller tool; it runs the real one under a limit of time, one
// question at a time, and leaves nothing of it behind.
//
//   diskscout-limit                                    by diskscout-limit.cfg in its directory
//   diskscout-limit --limit 60 --lock FILE TOOL
//
// The lock is taken before the process parts into three: it is held until the last of them is gone, and so is
// all that the tool has started.
#include "keeper.h"
#include "limit_lock.h"
#include "limit_settings.h"
#include "limited_run.h"
#include "output.h"
#include "program.h"

#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/auxv.h>

namespace fs = std::filesystem;

const char PROGRAM_NAME[] = "diskscout-limit";

// As the kernel was asked for it: argv may hold anything.
static std::string started_as()
{
	// NOLINTNEXTLINE(performance-no-int-to-ptr): so the kernel hands addresses over
	const auto *const path = reinterpret_cast<const char *>(getauxval(AT_EXECFN));
	return path ? path : "/proc/self/exe";
}

// It would start itself until no process is left.
static void refuse_this_program(const std::string &tool)
{
	std::error_code error;
	if (fs::equivalent(tool, "/proc/self/exe", error))
		throw std::runtime_error(fmt::format("{} is this program itself", tool));
}

static int print(std::string_view text)
{
	return write_output(text) ? 0 : STATUS_NOT_ASKED;
}

static int run(int argc, char **argv)
{
	const limit_settings_t settings = read_limit_settings(argc, argv, started_as());
	if (settings.asks_for_help)
		return print(limit_usage());
	if (settings.asks_for_version)
		return print("diskscout-limit " DISKSCOUT_VERSION "\n");
	refuse_this_program(settings.tool.front());
	if (!settings.lock.empty())
		hold_lock(settings.lock, settings.lock_limit);
	start_keeper();
	return run_limited(settings.tool, settings.limit);
}

int main(int argc, char **argv)
{
	occupy_standard_descriptors();
	try {
		return run(argc, argv);
	} catch (const std::exception &error) {
		complain(error.what());
		return STATUS_NOT_ASKED;
	}
}
