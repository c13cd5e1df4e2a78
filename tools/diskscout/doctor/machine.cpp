// SPDX-License-Identifier: Apache-2.0
// This machine as the checks see it.
#include "machine.h"

#include "kinds.h"

#include "diskscout_block.h"

#include <algorithm>
#include <fmt/format.h>

static void take(messages_t *to, const messages_t &more)
{
	to->insert(to->end(), more.begin(), more.end());
}

machine_t machine_of(enquiry_t &from)
{
	machine_t machine = {{}, read_kernel_tables(), {}, {}, true};
	facts_t &facts = machine.facts;
	take_devices(&facts, from);
	take_disks(&facts, from);
	take_partitions(&facts, from);
	take_cdroms(&facts, from);
	machine.unlisted = unlisted_disks(facts, machine.tables);
	take(&machine.reasons, disk_reasons(facts, machine.unlisted, machine.tables, DISKS_KIND));
	take(&machine.reasons,
	     partition_reasons(facts, machine.unlisted, machine.tables, PARTITIONS_KIND, true));
	take(&machine.reasons, cdrom_reasons(facts, machine.tables, CDROMS_KIND));
	machine.is_judged = is_judged(from);
	return machine;
}

bool is_judged(enquiry_t &from)
{
	return from.block_list(CMD_GET_BLOCK_DEVICES).failed() ||
	       !from.list(CMD_GET_DISKS).records<STORAGE_DISK_LIST>().empty() ||
	       !from.list(CMD_GET_CDROMS).records<STORAGE_CDROM_LIST>().empty();
}

verdict_t judged(const machine_t &machine, verdict_t verdict)
{
	return machine.is_judged ? verdict : verdict_t::FINE;
}

bool has_text(const findings_t &findings, const std::string &text)
{
	return std::any_of(findings.begin(), findings.end(),
	                   [&](const finding_t &finding) { return finding.text == text; });
}

// Two lists may leave out the same for the same reason.
findings_t told(const machine_t &machine, code_t code, verdict_t verdict, detail_t detail)
{
	findings_t findings;
	for (const message_t &reason : machine.reasons) {
		if (reason.code == code && reason.detail == detail && !has_text(findings, reason.text))
			findings.push_back({verdict, reason.text});
	}
	return findings;
}

findings_t about(const std::vector<std::string> &names, const std::string &text, verdict_t verdict)
{
	if (names.empty())
		return {};
	return {{verdict, fmt::format("{}: {}", names_in_short(names), text)}};
}
