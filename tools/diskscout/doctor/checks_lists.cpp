// SPDX-License-Identifier: Apache-2.0
// What the classic lists have no place for: kernels without their tables, names, limits of their length.
#include "checks_machine.h"

#include "finding.h"
#include "machine.h"

#include <algorithm>

static findings_t missing_table(const patient_t &at, code_t code, int error)
{
	const machine_t machine = machine_of(at.from);
	return advised(told(machine, code,
	                    error == ENOENT ? judged(machine, verdict_t::PROBLEM) : verdict_t::PROBLEM),
	               advice_for(error, at.inherited));
}

findings_t look_at_scsi_table(const patient_t &at)
{
	return missing_table(at, code_t::NO_SCSI_TABLE, read_kernel_tables().scsi.error);
}

findings_t look_at_ide_table(const patient_t &at)
{
	return missing_table(at, code_t::NO_IDE_TABLE, read_kernel_tables().ide.error);
}

// Floppy drives, network devices and the like were never meant to be there.
static bool is_disk(const machine_t &machine, const std::string &name)
{
	const auto &devices = machine.facts.devices;
	return std::any_of(devices.begin(), devices.end(), [&](const known_device_t &device) {
		return device.name == name && device.kind == "disk";
	});
}

findings_t look_at_classic_names(const patient_t &at)
{
	const machine_t machine = machine_of(at.from);
	std::vector<std::string> disks;
	std::string text;
	for (const unlisted_t &device : machine.unlisted) {
		if (device.reason.code != code_t::NO_CLASSIC_NAME || !is_disk(machine, device.name))
			continue;
		disks.push_back(device.name);
		text = device.reason.text;
	}
	return about(disks, text, judged(machine, verdict_t::WARNING));
}

// Of a table that is not there at all another check tells.
findings_t look_at_table_rows(const patient_t &at)
{
	const machine_t machine = machine_of(at.from);
	const verdict_t verdict = judged(machine, verdict_t::WARNING);
	findings_t findings = told(machine, code_t::NOT_IN_SCSI_TABLE, verdict);
	append(findings, told(machine, code_t::NOT_IN_IDE_TABLE, verdict));
	if (!machine.tables.block.error)
		append(findings, told(machine, code_t::NOT_IN_BLOCK_TABLE, verdict));
	return findings;
}

// What has no limit elsewhere is of no use where there is nothing else.
static findings_t cut_lists(const patient_t &at, detail_t what)
{
	const machine_t machine = machine_of(at.from);
	return advised(
		told(machine, code_t::LIST_CUT, verdict_t::PROBLEM, what),
		machine.facts.knows_devices
			? ""
			: "this kernel tells nobody more: look into its own tables in /proc, which have no "
			  "limit");
}

findings_t look_at_disk_limit(const patient_t &at)
{
	return cut_lists(at, detail_t::DISKS);
}

findings_t look_at_row_limit(const patient_t &at)
{
	return cut_lists(at, detail_t::TABLE_ROWS);
}

findings_t look_at_drive_limit(const patient_t &at)
{
	return cut_lists(at, detail_t::DRIVES);
}

findings_t look_at_mount_limit(const patient_t &at)
{
	return cut_lists(at, detail_t::MOUNTS);
}

findings_t look_at_partition_limit(const patient_t &at)
{
	return cut_lists(at, detail_t::PARTITIONS);
}

findings_t look_at_rings(const patient_t &at)
{
	return told(machine_of(at.from), code_t::LIST_CUT, verdict_t::PROBLEM, detail_t::RING_OF_TABLES);
}
