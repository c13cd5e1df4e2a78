// SPDX-License-Identifier: Apache-2.0
// Loads the built plug-ins as an agent does and asks them.
#ifndef DISKSCOUT_TESTS_PLUGIN_PLUGIN_H
#define DISKSCOUT_TESTS_PLUGIN_PLUGIN_H

#include "diskscout.h"

// The exported symbols, resolved from the library itself and not linked with.
struct Exchange {
	explicit Exchange(const char *path, int mode);

	void *handle;
	int (*get)(const IPMICOMMAND *cmd, void **result, int *length);
	int (*release)(const IPMICOMMAND *cmd, void **result);

	int query(UINT code, void **head, int *count) const;
	int free_list(UINT code, void **head) const;
};

struct Plugin : Exchange {
	explicit Plugin(int mode);

	int (*cli)(int argc, char **argv, int start);
	int *live_local;
	int *live_hardware;
};

struct BlockPlugin : Exchange {
	explicit BlockPlugin(int mode);

	int *live;
};

// Loaded at the first call; they stay.
const Plugin &plugin();
const BlockPlugin &block_plugin();

// A captured host of tests/hosts, by its directory's name.
void show_host(const char *name);

#endif
