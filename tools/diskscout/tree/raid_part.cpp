// SPDX-License-Identifier: Apache-2.0
// What is behind the RAID controllers of the machine.
#include "raid_part.h"

#include "controller_part.h"
#include "examination.h"
#include "raid_site.h"
#include "text.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <sys/stat.h>

// Why the file that the plug-in would read is not there; 0: it is.
static int error_of_configuration(enquiry_t &from)
{
	const std::string file = from.configuration();
	const worked_t worked =
		from.work("configuration", enquiry_t::place_t::HERE, [&](const worker_link_t &to) {
			struct stat there;
			const int error = stat(file.c_str(), &there) == 0 ? 0 : errno;
			to.result(&error, sizeof error);
		});
	int error = 0;
	if (worked.is_done && worked.count == sizeof error)
		memcpy(&error, worked.result(), sizeof error);
	return error;
}

// A machine without a RAID controller has no configuration either. One that nobody named and that may be
// there or not is no failure, but it is said.
static bool has_raid(enquiry_t &from, const options_t &opts, messages_t &messages)
{
	if (!opts.config.empty() || !opts.controller.empty())
		return true;
	const int error = error_of_configuration(from);
	if (error == EACCES || error == EPERM)
		messages.push_back({severity_t::WARNING, &TREE_KIND, code_t::NO_PERMISSION,
		                    fmt::format("whether there are RAID controllers is not told: {}: {}",
		                                from.configuration(), strerror(error))});
	return error == 0 || (error != ENOENT && error != ENOTDIR && error != EACCES && error != EPERM);
}

static const aac_controller *record_of_controller(const std::string &name, enquiry_t &from)
{
	for (const aac_controller *controller : from.controllers().records<aac_controller>()) {
		if (text_of(controller->Adapter_Name) == name)
			return controller;
	}
	return nullptr;
}

// As the lists of the same things tell them.
static kinds_t add_failures(enquiry_t &from, messages_t &messages)
{
	kinds_t failed, kinds = {&CONTROLLERS_KIND};
	if (!from.raid().names().empty())
		kinds.insert(kinds.end(), {&CONTAINERS_KIND, &RAID_DISKS_KIND, &RAID_SPACE_KIND});
	for (const kind_t *kind : kinds) {
		section_t section = {kind, kind->ask(from)};
		if (!section.answer.failed)
			continue;
		messages.push_back(message_of_failure(section, from));
		failed.push_back(kind);
	}
	return failed;
}

claims_t add_raid_part(machine_tree_t &machine, enquiry_t &from, const options_t &opts, messages_t &messages)
{
	claims_t claims;
	if (!has_raid(from, opts, messages))
		return claims;
	for (const std::string &name : from.raid().names())
		add_controller(machine, name, record_of_controller(name, from), from, claims);
	const kinds_t failed = add_failures(from, messages);
	const finding_t leading = failed.empty() ? finding_t{} : leading_finding(failed, from);
	if (!leading.text.empty())
		messages.push_back({severity_t::ERROR, nullptr, code_t::PROBLEM_FOUND, leading.text});
	if (failed.empty() && from.raid().names().empty())
		messages.push_back({severity_t::NOTE, &TREE_KIND, code_t::NO_CONTROLLER,
		                    "no RAID controller was found"});
	return claims;
}
