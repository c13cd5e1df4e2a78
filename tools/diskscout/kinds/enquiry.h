// SPDX-License-Identifier: Apache-2.0
// What one run asks the plug-ins. Lists that several kinds need are asked for once.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_ENQUIRY_H
#define DISKSCOUT_TOOLS_DISKSCOUT_ENQUIRY_H

#include "plugin.h"
#include "private_directory.h"
#include "worker.h"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class raid_site_t;

class enquiry_t
{
public:
	// Plug-ins that nothing is asked of may be null. The controller is named by the caller of the
	// program; empty: the first one of the list.
	// Each list is asked for by a worker, under this limit; 0: none.
	enquiry_t(const plugin_t *classic, const plugin_t *block, std::string controller,
	          std::chrono::milliseconds limit = {});
	~enquiry_t();
	void set_limit(std::chrono::milliseconds limit) { limit_ = limit; }
	// Of the plug-ins that nothing is asked of, nothing may be asked.
	bool has_classic() const { return classic_; }
	bool has_block() const { return block_; }
	std::chrono::milliseconds limit() const { return limit_; }

	// Work that may hang, beside the lists: in a worker, under the same limit. The controller tool's work
	// is done in a private directory, which is there until the end of this.
	enum class place_t { HERE, PRIVATE };
	worked_t work(const char *stage, place_t place, const work_t &what);
	// Processes that the kernel did not let go of, of all work so far.
	const pids_t &left_behind() const { return left_behind_; }

	// The plug-in is asked at the first call for this list; the records are there as long as the enquiry.
	const item_list_t &list(UINT query);       // of the classic plug-in, without an argument
	const item_list_t &block_list(UINT query); // of the block plug-in
	item_list_t ask(UINT query, const std::string &argument); // of the classic plug-in, anew

	const item_list_t &controllers() { return list(CMD_GET_CONTROLLERS); }
	// Where the device of this name is mounted, "[SWAP]" for a swap area; nowhere when that cannot be
	// told.
	const std::vector<std::string_view> &mounted(std::string_view device);

	// The controller that the queries are about; none when none was named and none is listed.
	std::optional<std::string> controller();
	const std::string &named_controller() const { return named_; }
	// What is behind the controllers: all of them, or the named one. As it was before there were
	// operations: the first one in place of all, asked by the queries.
	void set_raid_as_before(bool as_before) { is_raid_as_before_ = as_before; }
	raid_site_t &raid();

	std::string configuration() const { return classic_->configuration(); }

private:
	worked_t ask_plugin(const plugin_t &of, UINT code, const std::string &argument);
	const item_list_t &remembered(const plugin_t &of, UINT query);
	const std::string &private_directory();
	work_t with_full_paths(const work_t &what) const;

	const plugin_t *classic_;
	const plugin_t *block_;
	std::string named_;
	std::chrono::milliseconds limit_;
	std::optional<private_directory_t> directory_;
	pids_t left_behind_;
	bool is_raid_as_before_ = false;
	std::unique_ptr<raid_site_t> raid_;
	std::map<UINT, item_list_t> lists_;
	using places_t = std::map<std::string_view, std::vector<std::string_view>>;
	std::optional<places_t> places_;
};

#endif
