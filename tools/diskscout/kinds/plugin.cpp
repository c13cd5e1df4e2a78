// A plug-in, loaded and asked as an agent does.
#include "plugin.h"

#include <cerrno>

plugin_t::plugin_t(const std::filesystem::path &file)
    : loaded_plugin_t(file), get_item_info_(symbol<decltype(GetItemInfo)>("GetItemInfo")),
      set_item_info_(symbol<decltype(SetItemInfo)>("SetItemInfo"))
{
}

static IPMICOMMAND request(UINT command)
{
	IPMICOMMAND result{};
	result.nCommand = command;
	return result;
}

int plugin_t::get(UINT command, const std::string &argument, void **result, int *length) const
{
	IPMICOMMAND cmd = request(command);
	// The request wants bytes that may be written to.
	std::string data = argument;
	if (!data.empty()) {
		cmd.szData = data.data();
		cmd.nDataLen = static_cast<UINT>(data.size() + 1);
	}
	return get_item_info_(&cmd, result, length);
}

int plugin_t::set(UINT command, void **result) const
{
	const IPMICOMMAND cmd = request(command);
	return set_item_info_(&cmd, result);
}

item_list_t::item_list_t(const plugin_t &from, UINT query, const std::string &argument)
    : plugin_(from), query_(query)
{
	errno = 0;
	failed_ = from.get(query, argument, &head_, &length_) != 0;
	error_ = failed_ ? errno : 0;
}

item_list_t::~item_list_t()
{
	// The release code of a query is the query code plus one. Nobody is left to hear of a failed release.
	plugin_.set(query_ + 1, &head_);
}
