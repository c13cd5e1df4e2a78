// The plug-in, loaded and asked as an agent does.
#include "plugin.h"

#include "text.h"
#include "usage_error.h"

#include <cstring>
#include <dlfcn.h>
#include <fmt/format.h>

void plugin::unloader::operator()(void *handle) const
{
	dlclose(handle);
}

template <typename Symbol> Symbol *plugin::symbol(const char *name) const
{
	void *const address = dlsym(m_handle.get(), name);
	if (!address)
		throw usage_error(fmt::format("the plug-in cannot be used: {}", dlerror()));
	return reinterpret_cast<Symbol *>(address);
}

// RTLD_NOW: what is missing is missed here, and not in the middle of a query.
plugin::plugin(const std::filesystem::path &file) : m_handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
{
	if (!m_handle)
		throw usage_error(fmt::format("the plug-in cannot be loaded: {}", dlerror()));
	m_get_item_info = symbol<decltype(GetItemInfo)>("GetItemInfo");
	m_set_item_info = symbol<decltype(SetItemInfo)>("SetItemInfo");
}

static IPMICOMMAND request(UINT command)
{
	IPMICOMMAND result{};
	result.nCommand = command;
	return result;
}

int plugin::get(UINT command, const std::string &argument, void **result, int *length) const
{
	IPMICOMMAND cmd = request(command);
	// The request wants bytes that may be written to.
	std::string data = argument;
	if (!data.empty()) {
		cmd.szData = data.data();
		cmd.nDataLen = static_cast<UINT>(data.size() + 1);
	}
	return m_get_item_info(&cmd, result, length);
}

int plugin::set(UINT command, void **result) const
{
	const IPMICOMMAND cmd = request(command);
	return m_set_item_info(&cmd, result);
}

// The exported variable that every host of the plug-in may write to; its size is part of the interface.
static const char configuration_symbol[] = "g_szConfigFileName";
using configuration_name = char[256];

std::string plugin::configuration() const
{
	const void *const name = dlsym(m_handle.get(), configuration_symbol);
	return name ? text_of(*static_cast<const configuration_name *>(name)) : "";
}

void plugin::set_configuration(const std::string &file) const
{
	const std::size_t most = sizeof(configuration_name) - 1;
	if (file.size() > most)
		throw usage_error(fmt::format("the configuration's path has {} bytes, the plug-in takes {}",
		                              file.size(), most));
	configuration_name &name = *symbol<configuration_name>(configuration_symbol);
	memcpy(name, file.c_str(), file.size() + 1);
}

item_list::item_list(const plugin &from, UINT query, const std::string &argument)
    : m_plugin(from), m_query(query), m_failed(from.get(query, argument, &m_head, &m_length) != 0)
{
}

item_list::~item_list()
{
	// The release code of a query is the query code plus one. Nobody is left to hear of a failed release.
	m_plugin.set(m_query + 1, &m_head);
}
