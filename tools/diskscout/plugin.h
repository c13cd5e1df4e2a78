/* The plug-in, loaded and asked as an agent does. */
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H

#include "diskscout.h"
#include "loaded_plugin.h"

#include <filesystem>
#include <string>
#include <vector>

class plugin : public loaded_plugin
{
public:
	/* Throws usage_error when the file is no plug-in. */
	explicit plugin(const std::filesystem::path &file);

	/* Without an argument, which is empty then, the plug-in gets a null. */
	int get(UINT command, const std::string &argument, void **result, int *length) const;
	int set(UINT command, void **result) const;

private:
	decltype(&GetItemInfo) m_get_item_info;
	decltype(&SetItemInfo) m_set_item_info;
};

/*
 * The answer to one query. The records are the plug-in's; they go back with the release code of the query,
 * after a failed query too: it may have left the records that it made before it failed.
 */
class item_list
{
public:
	item_list(const plugin &from, UINT query, const std::string &argument = {});
	~item_list();
	item_list(const item_list &) = delete;
	item_list &operator=(const item_list &) = delete;

	bool failed() const { return m_failed; }

	/* All records. Both the links and the length end the list: the links may go on. */
	template <typename Record> std::vector<Record> records() const
	{
		std::vector<Record> result;
		auto record = static_cast<const Record *>(m_head);
		for (int i = 0; record && i < m_length; i++, record = record->next)
			result.push_back(*record);
		return result;
	}

private:
	const plugin &m_plugin;
	UINT m_query;
	void *m_head = nullptr;
	int m_length = 0;
	bool m_failed;
};

#endif
