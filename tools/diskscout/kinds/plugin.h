// A plug-in, loaded and asked as an agent does. The classic one and that of today's hosts are asked alike.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H

#include "diskscout.h"
#include "loaded_plugin.h"

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

// The answer to one query. The records are the plug-in's; they go back with the release code of the query,
// after a failed query too: it may have left the records that it made before it failed.
class item_list_t
{
public:
	item_list_t(const plugin_t &from, UINT query, const std::string &argument = {});
	~item_list_t();
	item_list_t(const item_list_t &) = delete;
	item_list_t &operator=(const item_list_t &) = delete;

	bool failed() const { return failed_; }
	// errno as the failed query left it; 0 when it left none.
	int error() const { return error_; }

	// All records, which live as long as this. Both the links and the length end the list: the links may
	// go on.
	template <typename Record> std::vector<const Record *> records() const
	{
		std::vector<const Record *> result;
		auto record = static_cast<const Record *>(head_);
		for (int i = 0; record && i < length_; i++, record = record->next)
			result.push_back(record);
		return result;
	}

private:
	const plugin_t &plugin_;
	UINT query_;
	void *head_ = nullptr;
	int length_ = 0;
	int error_ = 0;
	bool failed_;
};

#endif
