// SPDX-License-Identifier: Apache-2.0
// Nothing outlives a run: not a process, not a file.
#ifndef DISKSCOUT_TOOLS_COMMON_KEEPER_H
#define DISKSCOUT_TOOLS_COMMON_KEEPER_H

/*
 * Parts this process into three, and returns in the third, which does the work: the one that was started
 * waits and ends as the worker does; the one between, the keeper, sees either of them end and then ends
 * whatever is left and removes its files. So it does when this run is told to end by SIGTERM, SIGINT or
 * SIGHUP (after which the started process ends by that signal), and when any of the three is killed. The work
 * has no terminal of its own any more: what is typed there reaches the started process alone.
 *
 * What earlier runs have left, of which all processes were killed at once, is removed beside the work.
 *
 * Throws std::system_error when there can be no more processes.
 */
void start_keeper();

#endif
