// The plug-in, loaded and asked as an agent does.
#include "plugin.h"

plugin::plugin(const std::filesystem::path &file)
    : loaded_plugin(file), m_get_item_info(symbol<decltype(GetItemInfo)>("GetItemInfo")),
      m_set_item_info(symbol<decltype(SetItemInfo)>("SetItemInfo"))
{
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

item_list::item_list(const plugin &from, UINT query, const std::string &argument)
    : m_plugin(from), m_query(query), m_failed(from.get(query, argument, &m_head, &m_length) != 0)
{
}

item_list::~item_list()
{
	// The release code of a query is the query code plus one. Nobody is left to hear of a failed release.
	m_plugin.set(m_query + 1, &m_head);
}
