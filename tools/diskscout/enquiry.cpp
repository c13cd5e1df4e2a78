// What one run asks the plug-in.
#include "enquiry.h"

#include "text.h"

enquiry_t::enquiry_t(const plugin_t &from, std::string controller)
    : plugin_(from), named_(std::move(controller))
{
}

item_list_t enquiry_t::ask(UINT query, const std::string &argument) const
{
	return {plugin_, query, argument};
}

const item_list_t &enquiry_t::controllers()
{
	if (!controllers_)
		controllers_.emplace(plugin_, CMD_GET_CONTROLLERS);
	return *controllers_;
}

const item_list_t &enquiry_t::raid_disks()
{
	if (!raid_disks_)
		raid_disks_.emplace(plugin_, CMD_GET_RAID_DISKS, controller().value_or(""));
	return *raid_disks_;
}

std::optional<std::string> enquiry_t::controller()
{
	if (!named_.empty())
		return named_;
	const std::vector<aac_controller> listed = controllers().records<aac_controller>();
	if (listed.empty())
		return std::nullopt;
	return text_of(listed.front().Adapter_Name);
}
