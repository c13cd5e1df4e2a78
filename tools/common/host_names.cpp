// SPDX-License-Identifier: Apache-2.0
// Whose storage is shown.
#include "host_names.h"

#include <dlfcn.h>
#include <sys/utsname.h>

static std::optional<std::string> known(const char *text)
{
	if (!text || *text == '\0')
		return std::nullopt;
	return text;
}

// uname() would answer the running kernel's where the captured host does not tell.
static host_names_t captured_names()
{
	using told_t = const char *(const char *field);
	const auto told = reinterpret_cast<told_t *>(dlsym(RTLD_DEFAULT, "replay_uname_told"));
	if (!told)
		return {};
	return {known(told("nodename")), known(told("release"))};
}

host_names_t host_names(bool captured)
{
	if (captured)
		return captured_names();
	struct utsname running = {};
	if (uname(&running) != 0)
		return {};
	return {known(running.nodename), known(running.release)};
}
