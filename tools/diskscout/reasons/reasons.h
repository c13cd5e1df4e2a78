// SPDX-License-Identifier: Apache-2.0
// Why a classic list lacks what this host has, or shows it in a way that misleads: a line for each cause.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_REASONS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_REASONS_H

#include "kinds.h"
#include "messages.h"

// For the classic kinds among those that are shown. Where the devices themselves were asked for by name, that
// they could not be asked is told with that kind.
messages_t reasons(enquiry_t &from, const kinds_t &shown, bool devices_are_named);

#endif
