#include "plugin.h"

#include "replay/replay.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>

template <class Symbol> static void find(void *library, const char *name, Symbol *symbol)
{
	*symbol = reinterpret_cast<Symbol>(dlsym(library, name));
	if (!*symbol) {
		fprintf(stderr, "%s is not exported\n", name);
		abort();
	}
}

Plugin::Plugin()
{
	void *library = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
	if (!library) {
		fprintf(stderr, "%s\n", dlerror());
		abort();
	}
	find(library, "GetItemInfo", &get);
	find(library, "SetItemInfo", &release);
	find(library, "stcli", &cli);
	find(library, "memory_counter_hdd", &live_local);
	find(library, "memory_counter_hwraid", &live_hardware);
}

int Plugin::query(UINT code, void **head, int *count) const
{
	IPMICOMMAND cmd = {};
	cmd.nCommand = code;
	return get(&cmd, head, count);
}

int Plugin::free_list(UINT code, void **head) const
{
	IPMICOMMAND cmd = {};
	cmd.nCommand = code;
	return release(&cmd, head);
}

const Plugin &plugin()
{
	static const Plugin loaded;
	return loaded;
}

void show_host(const char *name)
{
	replay_set_child_library(REPLAY_LIBRARY);
	ASSERT_EQ(replay_use((std::string(HOSTS_DIRECTORY "/") + name).c_str()), 0);
}
