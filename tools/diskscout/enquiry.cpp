// What one run asks the plug-in.
#include "enquiry.h"

#include "text.h"

enquiry::enquiry(const plugin &from, std::string controller) : m_plugin(from), m_named(std::move(controller))
{
}

item_list enquiry::ask(UINT query, const std::string &argument) const
{
	return {m_plugin, query, argument};
}

const item_list &enquiry::controllers()
{
	if (!m_controllers)
		m_controllers.emplace(m_plugin, CMD_GET_CONTROLLERS);
	return *m_controllers;
}

const item_list &enquiry::raid_disks()
{
	if (!m_raid_disks)
		m_raid_disks.emplace(m_plugin, CMD_GET_RAID_DISKS, controller().value_or(""));
	return *m_raid_disks;
}

std::optional<std::string> enquiry::controller()
{
	if (!m_named.empty())
		return m_named;
	const std::vector<aac_controller> listed = controllers().records<aac_controller>();
	if (listed.empty())
		return std::nullopt;
	return text_of(listed.front().Adapter_Name);
}
