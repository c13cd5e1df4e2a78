// SPDX-License-Identifier: Apache-2.0
/*
 * Lists of both plug-ins that give themselves back, in C++17:
 *
 *   lists [DIRECTORY]    where the plug-ins are, when not where they were installed
 *
 * Exit status: 0; 1 when a list cannot be had.
 */
#include "diskscout.h"
#include "diskscout_block.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

// A plug-in, loaded as long as one of the copies of this object is there: every list holds one.
class plugin
{
public:
	enum class failures { WITHOUT_CAUSE, WITH_ERRNO };

	plugin(const std::string &path, failures told) : fails(told)
	{
		void *const loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
		if (!loaded)
			throw std::runtime_error(dlerror());
		library.reset(loaded, dlclose);
		get = symbol<decltype(GetItemInfo)>("GetItemInfo");
		release = symbol<decltype(SetItemInfo)>("SetItemInfo");
	}

	// Functions and counters; the plug-in keeps them.
	template <class Symbol> Symbol *symbol(const char *name) const
	{
		void *const found = dlsym(library.get(), name);
		if (!found)
			throw std::runtime_error(dlerror());
		return reinterpret_cast<Symbol *>(found);
	}

	decltype(GetItemInfo) *get;
	decltype(SetItemInfo) *release;
	failures fails;

private:
	std::shared_ptr<void> library;
};

// The answer to one query. The records live as long as the list.
template <class Record> class list
{
public:
	class iterator
	{
	public:
		explicit iterator(const Record *first) : at(first) {}
		const Record &operator*() const { return *at; }
		iterator &operator++()
		{
			at = at->next;
			return *this;
		}
		bool operator!=(const iterator &other) const { return at != other.at; }

	private:
		const Record *at;
	};

	// The query must be the one whose records these are: nothing else tells the kinds apart.
	list(const plugin &from, UINT query) : owner(from), release_code(query + 1)
	{
		IPMICOMMAND command{};
		command.nCommand = query;
		int length = 0;
		if (owner.get(&command, &head, &length) == 0)
			return;
		const int reason = owner.fails == plugin::failures::WITH_ERRNO ? errno : EIO;
		give_back(); // a query that fails may have made some records
		throw std::system_error(reason, std::generic_category(), "query " + std::to_string(query));
	}
	list(list &&other) noexcept
	    : owner(other.owner), release_code(other.release_code), head(std::exchange(other.head, nullptr))
	{
	}
	list(const list &) = delete;
	list &operator=(const list &) = delete;
	~list() { give_back(); }

	iterator begin() const { return iterator(static_cast<const Record *>(head)); }
	iterator end() const { return iterator(nullptr); }

private:
	void give_back()
	{
		IPMICOMMAND command{};
		command.nCommand = release_code;
		owner.release(&command, &head);
	}

	plugin owner;
	UINT release_code;
	void *head = nullptr;
};

static void show_classic(const plugin &classic)
{
	for (const STORAGE_DISK_LIST &disk : list<STORAGE_DISK_LIST>(classic, CMD_GET_DISKS))
		std::printf("classic disk %s: %llu bytes\n", disk.szDeviceName, disk.nSize);
}

// Texts that nobody tells are null.
static const char *or_dash(const char *text)
{
	return text ? text : "-";
}

static void show_today(const plugin &today)
{
	for (const block_device &device : list<block_device>(today, CMD_GET_BLOCK_DEVICES))
		std::printf("%s %s: %lld bytes, model %s\n", device.kind, device.name, device.size,
		            or_dash(device.model));
	for (const block_mount &mount : list<block_mount>(today, CMD_GET_BLOCK_MOUNTS))
		if (mount.devices)
			std::printf("%s at %s\n", mount.devices->text,
			            mount.mount_point ? mount.mount_point : mount.kind);
}

int main(int argc, char **argv)
try {
	const std::string directory = argc > 1 ? argv[1] : PLUGIN_DIRECTORY;
	const plugin classic(directory + "/diskscout.so", plugin::failures::WITHOUT_CAUSE);
	const plugin today(directory + "/diskscout-block.so", plugin::failures::WITH_ERRNO);
	show_classic(classic);
	show_today(today);
	std::printf("%d and %d records are not given back\n", *classic.symbol<int>("memory_counter_hdd"),
	            *today.symbol<int>("memory_counter_block"));
} catch (const std::exception &error) {
	std::fprintf(stderr, "lists: %s\n", error.what());
	return 1;
}
