// SPDX-License-Identifier: Apache-2.0
// A plug-in, loaded and asked as an agent does. The classic one and that of today's hosts are asked alike.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H

#include "diskscout.h"
#include "loaded_plugin.h"
#include "packed_list.h"
#include "worker.h"

#include <filesystem>
#include <string>
#include <vector>

class plugin_t : public loaded_plugin_t
{
public:
	// Throws usage_error when the file is no plug-in.
	explicit plugin_t(const std::filesystem::path &file);

	// Without an argument, which is empty then, the plug-in gets a null.
	int get(UINT command, const std::string &argument, void **result, int *length) const;
	int set(UINT command, void **result) const;

private:
	decltype(&GetItemInfo) get_item_info_;
	decltype(&SetItemInfo) set_item_info_;
};

// The answer to one query, in the process that asks. The records are the plug-in's; they go back with the
// release code of the query, after a failed query too: it may have left the records that it made before it
// failed.
class plugin_list_t
{
public:
	plugin_list_t(const plugin_t &from, UINT query, const std::string &argument);
	~plugin_list_t();
	plugin_list_t(const plugin_list_t &) = delete;
	plugin_list_t &operator=(const plugin_list_t &) = delete;

	const list_head_t &head() const { return head_; }

private:
	const plugin_t &plugin_;
	UINT query_;
	void *records_ = nullptr;
	list_head_t head_;
};

// The same where it was asked by a worker: the records are a copy that lives as long as this.
class item_list_t
{
public:
	item_list_t(UINT query, worked_t worked);
	item_list_t(const item_list_t &) = delete;
	item_list_t &operator=(const item_list_t &) = delete;

	bool failed() const { return head_.has_failed; }
	// errno as the failed query left it; 0 when it left none.
	int error() const { return head_.error; }
	// Why the plug-in did not come to answer at all: "timed out after 5 s at disk list"; else empty.
	const std::string &failure() const { return worked_.failure; }
	bool timed_out() const { return worked_.is_timed_out; }

	// All records. Both the links and the length end the list: the links may go on.
	template <typename Record> std::vector<const Record *> records() const
	{
		std::vector<const Record *> result;
		auto record = static_cast<const Record *>(head_.first);
		for (int i = 0; record && i < head_.length; i++, record = record->next)
			result.push_back(record);
		return result;
	}

private:
	worked_t worked_;
	list_head_t head_;
};

#endif
