// SPDX-License-Identifier: Apache-2.0
#include "plugin.h"

#include "replay/replay.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>

template <class Symbol> static void find(void *handle, const char *name, Symbol *symbol)
{
	*symbol = reinterpret_cast<Symbol>(dlsym(handle, name));
	if (!*symbol) {
		fprintf(stderr, "%s is not exported\n", name);
		abort();
	}
}

Exchange::Exchange(const char *path, int mode) : handle(dlopen(path, RTLD_NOW | mode))
{
	if (!handle) {
		fprintf(stderr, "%s\n", dlerror());
		abort();
	}
	find(handle, "GetItemInfo", &get);
	find(handle, "SetItemInfo", &release);
}

Plugin::Plugin(int mode) : Exchange(PLUGIN_LIBRARY, mode)
{
	find(handle, "stcli", &cli);
	find(handle, "memory_counter_hdd", &live_local);
	find(handle, "memory_counter_hwraid", &live_hardware);
}

BlockPlugin::BlockPlugin(int mode) : Exchange(BLOCK_PLUGIN_LIBRARY, mode)
{
	find(handle, "memory_counter_block", &live);
}

int Exchange::query(UINT code, void **head, int *count) const
{
	IPMICOMMAND cmd = {};
	cmd.nCommand = code;
	return get(&cmd, head, count);
}

int Exchange::free_list(UINT code, void **head) const
{
	IPMICOMMAND cmd = {};
	cmd.nCommand = code;
	return release(&cmd, head);
}

const Plugin &plugin()
{
	static const Plugin loaded(RTLD_LOCAL);
	return loaded;
}

const BlockPlugin &block_plugin()
{
	static const BlockPlugin loaded(RTLD_LOCAL);
	return loaded;
}

void show_host(const char *name)
{
	replay_set_child_library(REPLAY_LIBRARY);
	ASSERT_EQ(replay_use((std::string(HOSTS_DIRECTORY "/") + name).c_str()), 0);
}
