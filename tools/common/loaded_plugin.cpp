// SPDX-License-Identifier: Apache-2.0
// The plug-in's file, loaded.
#include "loaded_plugin.h"

#include "companion.h"
#include "cut_library.h"
#include "text.h"
#include "usage_error.h"

#include <cstring>
#include <dlfcn.h>
#include <fmt/format.h>

std::filesystem::path plugin_file(const std::string &named, std::string_view companion)
{
	if (named.empty())
		return find_companion(companion);
	return refused_as<plugin_error_t>([&] { return absolute_path(named); });
}

void loaded_plugin_t::unloader_t::operator()(void *handle) const
{
	dlclose(handle);
}

loaded_plugin_t::loaded_plugin_t(const std::filesystem::path &file)
{
	if (is_cut_library(file))
		throw plugin_error_t(
			fmt::format("the plug-in cannot be loaded: {}: its end is missing", file.string()));
	// RTLD_NOW: what is missing is missed here, and not in the middle of a query.
	handle_.reset(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
	if (!handle_)
		throw plugin_error_t(fmt::format("the plug-in cannot be loaded: {}", dlerror()));
}

void *loaded_plugin_t::address_of(const char *name) const
{
	void *const address = dlsym(handle_.get(), name);
	if (!address)
		throw plugin_error_t(fmt::format("the plug-in cannot be used: {}", dlerror()));
	return address;
}

void *loaded_plugin_t::address_if_any(const char *name) const
{
	return dlsym(handle_.get(), name);
}

// The exported variable that every host of the plug-in may write to; its size is part of the interface.
static const char CONFIGURATION_SYMBOL[] = "g_szConfigFileName";
using configuration_name_t = char[256];

std::string loaded_plugin_t::configuration() const
{
	const void *const name = address_if_any(CONFIGURATION_SYMBOL);
	return name ? text_of(*static_cast<const configuration_name_t *>(name)) : "";
}

void loaded_plugin_t::set_configuration(const std::string &file) const
{
	const std::size_t most = sizeof(configuration_name_t) - 1;
	if (file.size() > most)
		throw usage_error_t(fmt::format("the configuration's path has {} bytes, the plug-in takes {}",
		                                file.size(), most));
	configuration_name_t &name = *symbol<configuration_name_t>(CONFIGURATION_SYMBOL);
	memcpy(name, file.c_str(), file.size() + 1);
}
