// Why a query of the hardware RAID side failed.
#include "diagnosis.h"

#include "text.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <unistd.h>

static bool can_be_read(const std::string &file)
{
	return access(file.c_str(), R_OK) == 0;
}

static std::string names_of(const std::vector<const aac_controller *> &controllers)
{
	std::string names;
	for (const aac_controller *c : controllers)
		names += (names.empty() ? "" : ", ") + text_of(c->Adapter_Name);
	return names;
}

static bool is_among(const std::vector<const aac_controller *> &controllers, const std::string &name)
{
	for (const aac_controller *c : controllers) {
		if (text_of(c->Adapter_Name) == name)
			return true;
	}
	return false;
}

// The causes in the order that an operation would meet them in.
std::string diagnosis(enquiry_t &from)
{
	const std::string file = from.configuration();
	if (!file.empty() && !can_be_read(file))
		return fmt::format("the configuration {} cannot be read: {} (--config names another one)",
		                   file, strerror(errno));
	if (from.controllers().failed())
		return fmt::format("the controller tool or the filter script that {} names fails, or this "
		                   "directory, where they are run, cannot be written",
		                   file.empty() ? "the configuration" : file);
	const auto controllers = from.controllers().records<aac_controller>();
	if (controllers.empty())
		return "no RAID controller was found";
	const std::string name = from.controller().value_or("");
	if (!is_among(controllers, name))
		return fmt::format("there is no controller \"{}\", there is {}", name, names_of(controllers));
	return fmt::format("controller {} is there; another program may hold it", name);
}
