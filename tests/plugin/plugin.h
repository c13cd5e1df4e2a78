// Loads the built plug-in as an agent does and asks it.
#ifndef DISKSCOUT_TESTS_PLUGIN_PLUGIN_H
#define DISKSCOUT_TESTS_PLUGIN_PLUGIN_H

#include "diskscout.h"

// The exported symbols, resolved from the library itself and not linked with.
struct Plugin {
	Plugin();

	int (*get)(const IPMICOMMAND *cmd, void **result, int *length);
	int (*release)(const IPMICOMMAND *cmd, void **result);
	int (*cli)(int argc, char **argv, int start);
	int *live_local;
	int *live_hardware;

	int query(UINT code, void **head, int *count) const;
	int free_list(UINT code, void **head) const;
};

// Loaded at the first call; it stays.
const Plugin &plugin();

// A captured host of tests/hosts, by its directory's name.
void show_host(const char *name);

#endif
