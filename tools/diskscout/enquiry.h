// What one run asks the plug-in. Lists that several kinds need are asked for once.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_ENQUIRY_H
#define DISKSCOUT_TOOLS_DISKSCOUT_ENQUIRY_H

#include "plugin.h"

#include <optional>
#include <string>

class enquiry_t
{
public:
	// The controller is named by the caller of the program; empty: the first one of the list.
	enquiry_t(const plugin_t &from, std::string controller);

	item_list_t ask(UINT query, const std::string &argument = {}) const;
	// One run of the controller tool each, at the first call.
	const item_list_t &controllers();
	const item_list_t &raid_disks();
	// The controller that the queries are about; none when none was named and none is listed.
	std::optional<std::string> controller();

	std::string configuration() const { return plugin_.configuration(); }

private:
	const plugin_t &plugin_;
	std::string named_;
	std::optional<item_list_t> controllers_;
	std::optional<item_list_t> raid_disks_;
};

#endif
