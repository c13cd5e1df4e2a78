// SPDX-License-Identifier: Apache-2.0
// The plug-in's file, loaded: what every program that calls it needs, whatever it calls.
#ifndef DISKSCOUT_TOOLS_COMMON_LOADED_PLUGIN_H
#define DISKSCOUT_TOOLS_COMMON_LOADED_PLUGIN_H

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// The file that --plugin names; without a name, which is empty then, the one that comes with the program. The
// path is a full one. Throws plugin_error when none comes with it.
std::filesystem::path plugin_file(const std::string &named, std::string_view companion = "diskscout.so");

class loaded_plugin_t
{
public:
	// Throws plugin_error when the file is no library that can be loaded.
	explicit loaded_plugin_t(const std::filesystem::path &file);

	// The controller tool's configuration file, which the plug-in reads at its first hardware query.
	// Empty when the plug-in does not tell. Throws plugin_error when it cannot be made to read another
	// one, and usage_error when this one's path is too long for it.
	std::string configuration() const;
	void set_configuration(const std::string &file) const;

	// What the plug-in exports by this name, of the type it is declared with. Throws plugin_error when
	// there is no such thing.
	template <typename Symbol> Symbol *symbol(const char *name) const
	{
		return reinterpret_cast<Symbol *>(address_of(name));
	}
	// Null when there is no such thing.
	template <typename Symbol> Symbol *symbol_if_any(const char *name) const
	{
		return reinterpret_cast<Symbol *>(address_if_any(name));
	}

private:
	struct unloader_t {
		void operator()(void *handle) const;
	};
	void *address_of(const char *name) const;
	void *address_if_any(const char *name) const;

	std::unique_ptr<void, unloader_t> handle_;
};

#endif
