// SPDX-License-Identifier: Apache-2.0
// What can be wrong with what tool and filter did.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TOOL_ROWS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TOOL_ROWS_H

#include "tool_look.h"

// Of the tool.
findings_t not_started(const tool_look_t &look);
findings_t tool_hangs(const tool_look_t &look);
findings_t tool_killed(const tool_look_t &look);
findings_t tool_status(const tool_look_t &look);
findings_t tool_endless(const tool_look_t &look);
findings_t tool_silent(const tool_look_t &look);
findings_t tool_foreign(const tool_look_t &look);
findings_t tool_cut(const tool_look_t &look);
findings_t tool_refuses(const tool_look_t &look);
findings_t tool_leaves_processes(const tool_look_t &look);

// Of the filter, and of the answer that comes out of it.
findings_t filter_hangs(const tool_look_t &look);
findings_t filter_killed(const tool_look_t &look);
findings_t filter_status(const tool_look_t &look);
findings_t filter_silent(const tool_look_t &look);
findings_t answer_without_echo(const tool_look_t &look);
findings_t answer_with_paint(const tool_look_t &look);
findings_t answer_too_long(const tool_look_t &look);

// Of the controllers.
findings_t no_controller(const tool_look_t &look);
findings_t controller_missing(const tool_look_t &look);
findings_t controller_held(const tool_look_t &look);
findings_t controller_of_wrong_type(const tool_look_t &look);
findings_t controller_refused(const tool_look_t &look);

#endif
