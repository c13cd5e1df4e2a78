// SPDX-License-Identifier: Apache-2.0
// What the programs of a site stand in: who can write them, where they are run, and with what PATH.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SITE_SURROUNDINGS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SITE_SURROUNDINGS_H

#include "site.h"

findings_t bad_run_directory(const patient_t &at);
findings_t full_run_directory(const patient_t &at);
findings_t path_without_rm(const patient_t &at);
findings_t writable_by_others(const patient_t &at);

#endif
