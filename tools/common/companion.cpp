// SPDX-License-Identifier: Apache-2.0
// Libraries that come with the program.
#include "companion.h"

#include "usage_error.h"

#include <fmt/format.h>

namespace fs = std::filesystem;

static fs::path program_directory()
{
	std::error_code error;
	const fs::path program = fs::read_symlink("/proc/self/exe", error);
	if (error)
		throw plugin_error_t(fmt::format("/proc/self/exe cannot be read: {}", error.message()));
	return program.parent_path();
}

fs::path find_companion(std::string_view file_name)
{
	fs::path beside = program_directory() / file_name;
	fs::path installed =
		(program_directory() / DISKSCOUT_PLUGINS_FROM_PROGRAMS / file_name).lexically_normal();
	std::error_code error;
	if (fs::exists(beside, error))
		return beside;
	if (fs::exists(installed, error))
		return installed;
	throw plugin_error_t(
		fmt::format("{} is neither {} nor {}", file_name, beside.string(), installed.string()));
}

fs::path absolute_path(const fs::path &path)
{
	std::error_code error;
	fs::path result = fs::absolute(path, error);
	if (error)
		throw usage_error_t(fmt::format("{}: {}", path.string(), error.message()));
	return result;
}
