// SPDX-License-Identifier: Apache-2.0
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

plugin_list_t::plugin_list_t(const plugin_t &from, UINT query, const std::string &argument)
    : plugin_(from), query_(query)
{
	int length = 0;
	errno = 0;
	const bool has_failed = from.get(query, argument, &records_, &length) != 0;
	head_ = {records_, length, has_failed ? errno : 0, has_failed};
}

plugin_list_t::~plugin_list_t()
{
	// The release code of a query is the query code plus one. Nobody is left to hear of a failed release.
	plugin_.set(query_ + 1, &records_);
}

item_list_t::item_list_t(UINT query, worked_t worked)
    : worked_(std::move(worked)), head_({nullptr, 0, 0, true})
{
	if (worked_.is_done)
		head_ = unpack(query_of(query), worked_.result());
}
