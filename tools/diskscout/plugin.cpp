// The plug-in, loaded and asked as an agent does.
#include "plugin.h"

#include "usage_error.h"

#include <dlfcn.h>
#include <fmt/format.h>

void plugin::unloader::operator()(void *handle) const
{
	dlclose(handle);
}

template <typename Function> Function *plugin::symbol(const char *name) const
{
	void *const address = dlsym(m_handle.get(), name);
	if (!address)
		throw usage_error(fmt::format("the plug-in cannot be used: {}", dlerror()));
	return reinterpret_cast<Function *>(address);
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

int plugin::get(UINT command, void **result, int *length) const
{
	const IPMICOMMAND cmd = request(command);
	return m_get_item_info(&cmd, result, length);
}

int plugin::set(UINT command, void **result) const
{
	const IPMICOMMAND cmd = request(command);
	return m_set_item_info(&cmd, result);
}

item_list::item_list(const plugin &from, UINT query)
    : m_plugin(from), m_query(query), m_failed(from.get(query, &m_head, &m_length) != 0)
{
}

item_list::~item_list()
{
	// The release code of a query is the query code plus one. Nobody is left to hear of a failed release.
	m_plugin.set(m_query + 1, &m_head);
}
