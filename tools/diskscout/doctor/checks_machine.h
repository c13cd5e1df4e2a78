// SPDX-License-Identifier: Apache-2.0
// The checks of this machine, by theme.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_CHECKS_MACHINE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_CHECKS_MACHINE_H

#include "check.h"

// checks_process.cpp
findings_t look_at_children(const patient_t &at);
findings_t look_at_stack(const patient_t &at);

// checks_reach.cpp
findings_t look_at_answers(const patient_t &at);
findings_t look_at_sysfs(const patient_t &at);
findings_t look_at_path(const patient_t &at);
findings_t look_at_block_table(const patient_t &at);
findings_t look_at_permission(const patient_t &at);
findings_t look_at_contents(const patient_t &at);
findings_t look_at_nodes(const patient_t &at);
findings_t look_at_partition_tables(const patient_t &at);
findings_t look_at_mount_table(const patient_t &at);
findings_t look_at_queries(const patient_t &at);

// checks_lists.cpp
findings_t look_at_scsi_table(const patient_t &at);
findings_t look_at_ide_table(const patient_t &at);
findings_t look_at_classic_names(const patient_t &at);
findings_t look_at_table_rows(const patient_t &at);
findings_t look_at_disk_limit(const patient_t &at);
findings_t look_at_row_limit(const patient_t &at);
findings_t look_at_drive_limit(const patient_t &at);
findings_t look_at_mount_limit(const patient_t &at);
findings_t look_at_partition_limit(const patient_t &at);
findings_t look_at_rings(const patient_t &at);

// checks_rows.cpp
findings_t look_at_guid_tables(const patient_t &at);
findings_t look_at_places(const patient_t &at);
findings_t look_at_short_texts(const patient_t &at);
findings_t look_at_sectors(const patient_t &at);
findings_t look_at_extended_entries(const patient_t &at);
findings_t look_at_root(const patient_t &at);

// checks_arrays.cpp
findings_t look_at_arrays(const patient_t &at);

#endif
