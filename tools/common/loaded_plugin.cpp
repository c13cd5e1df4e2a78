// The plug-in's file, loaded.
#include "loaded_plugin.h"

#include "companion.h"
#include "text.h"
#include "usage_error.h"

#include <cstring>
#include <dlfcn.h>
#include <fmt/format.h>

std::filesystem::path plugin_file(const std::string &named)
{
	return named.empty() ? find_companion("diskscout.so") : absolute_path(named);
}

void loaded_plugin::unloader::operator()(void *handle) const
{
	dlclose(handle);
}

// RTLD_NOW: what is missing is missed here, and not in the middle of a query.
loaded_plugin::loaded_plugin(const std::filesystem::path &file)
    : m_handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
{
	if (!m_handle)
		throw usage_error(fmt::format("the plug-in cannot be loaded: {}", dlerror()));
}

void *loaded_plugin::address_of(const char *name) const
{
	void *const address = dlsym(m_handle.get(), name);
	if (!address)
		throw usage_error(fmt::format("the plug-in cannot be used: {}", dlerror()));
	return address;
}

// The exported variable that every host of the plug-in may write to; its size is part of the interface.
static const char configuration_symbol[] = "g_szConfigFileName";
using configuration_name = char[256];

std::string loaded_plugin::configuration() const
{
	const void *const name = dlsym(m_handle.get(), configuration_symbol);
	return name ? text_of(*static_cast<const configuration_name *>(name)) : "";
}

void loaded_plugin::set_configuration(const std::string &file) const
{
	const std::size_t most = sizeof(configuration_name) - 1;
	if (file.size() > most)
		throw usage_error(fmt::format("the configuration's path has {} bytes, the plug-in takes {}",
		                              file.size(), most));
	configuration_name &name = *symbol<configuration_name>(configuration_symbol);
	memcpy(name, file.c_str(), file.size() + 1);
}
