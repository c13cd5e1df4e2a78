/* What one run asks the plug-in. Lists that several kinds need are asked for once. */
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_ENQUIRY_H
#define DISKSCOUT_TOOLS_DISKSCOUT_ENQUIRY_H

#include "plugin.h"

#include <optional>
#include <string>

class enquiry
{
public:
	/* The controller is named by the caller of the program; empty: the first one of the list. */
	enquiry(const plugin &from, std::string controller);

	item_list ask(UINT query, const std::string &argument = {}) const;
	/* One run of the controller tool each, at the first call. */
	const item_list &controllers();
	const item_list &raid_disks();
	/* The controller that the queries are about; none when none was named and none is listed. */
	std::optional<std::string> controller();

	std::string configuration() const { return m_plugin.configuration(); }

private:
	const plugin &m_plugin;
	std::string m_named;
	std::optional<item_list> m_controllers;
	std::optional<item_list> m_raid_disks;
};

#endif
