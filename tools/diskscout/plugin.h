/* The plug-in, loaded and asked as an agent does. */
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PLUGIN_H

#include "diskscout.h"

#include <filesystem>
#include <memory>

class plugin
{
public:
	/* Throws usage_error when the file is no plug-in. */
	explicit plugin(const std::filesystem::path &file);

	int get(UINT command, void **result, int *length) const;
	int set(UINT command, void **result) const;

private:
	struct unloader {
		void operator()(void *handle) const;
	};
	/* The function of this name, of the type it is declared with. */
	template <typename Function> Function *symbol(const char *name) const;

	std::unique_ptr<void, unloader> m_handle;
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
	item_list(const plugin &from, UINT query);
	~item_list();
	item_list(const item_list &) = delete;
	item_list &operator=(const item_list &) = delete;

	bool failed() const { return m_failed; }
	bool empty() const { return !m_head || m_length <= 0; }

	/* Calls visit with every record. Both the links and the length end the list: the links may go on. */
	template <typename Record, typename Visit> void each(Visit visit) const
	{
		auto record = static_cast<const Record *>(m_head);
		for (int i = 0; record && i < m_length; i++, record = record->next)
			visit(*record);
	}

private:
	const plugin &m_plugin;
	UINT m_query;
	void *m_head = nullptr;
	int m_length = 0;
	bool m_failed;
};

#endif
