// SPDX-License-Identifier: Apache-2.0
// What can be wrong with the programs that the configuration names. Of each program the first of these is
// told that is the case: they hide each other.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SITE_PROGRAMS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SITE_PROGRAMS_H

#include "site.h"

findings_t names_for_the_shell(const patient_t &at);
findings_t names_with_blanks(const patient_t &at);
findings_t names_that_are_paths(const patient_t &at);
findings_t relative_programs(const patient_t &at);
findings_t missing_programs(const patient_t &at);
findings_t programs_not_executable(const patient_t &at);
findings_t missing_interpreters(const patient_t &at);

#endif
