// SPDX-License-Identifier: Apache-2.0
// What can be wrong with the configuration file itself. Of these each is looked for only where those before
// it have found nothing: they hide each other.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SITE_FILE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SITE_FILE_H

#include "site.h"

findings_t missing_configuration(const patient_t &at);
findings_t directory_for_configuration(const patient_t &at);
findings_t unreadable_configuration(const patient_t &at);
findings_t long_lines(const patient_t &at);
findings_t misspelt_keys(const patient_t &at);
findings_t missing_keys(const patient_t &at);

// Whether a line is cut, and with it what it names.
bool has_long_line(const tool_config_t &config);

#endif
