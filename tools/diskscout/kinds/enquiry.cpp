// SPDX-License-Identifier: Apache-2.0
// What one run asks the plug-ins.
#include "enquiry.h"

#include "companion.h"
#include "diskscout_block.h"
#include "raid_site.h"
#include "text.h"

#include <fstream>
#include <stdexcept>
#include <tuple>
#include <unistd.h>

enquiry_t::enquiry_t(const plugin_t *classic, const plugin_t *block, std::string controller,
                     std::chrono::milliseconds limit)
    : classic_(classic), block_(block), named_(std::move(controller)), limit_(limit)
{
}

// The plug-in traces what it does where it finds this file, and it will look for it in our directory.
static void hand_on_wish_for_traces(const std::string &directory)
{
	static const char WISH[] = "I_NEED_DEBUG_NOW.txt";
	if (access(WISH, F_OK) == 0)
		std::ofstream(directory + "/" + WISH);
}

const std::string &enquiry_t::private_directory()
{
	if (!directory_) {
		directory_.emplace();
		hand_on_wish_for_traces(directory_->path());
	}
	return directory_->path();
}

// The caller's words mean files of the directory that we were called in.
work_t enquiry_t::with_full_paths(const work_t &what) const
{
	const std::string named = classic_ ? classic_->configuration() : "";
	if (named.empty() || named[0] == '/')
		return what;
	const std::string full = absolute_path(named).string();
	return [this, full, what](const worker_link_t &to) {
		classic_->set_configuration(full);
		what(to);
	};
}

worked_t enquiry_t::work(const char *stage, place_t place, const work_t &what)
{
	worked_t worked;
	try {
		worked = place == place_t::HERE
		                 ? run_in_worker({stage, limit_}, what)
		                 : run_in_worker({stage, limit_, private_directory()}, with_full_paths(what));
	} catch (const std::runtime_error &error) {
		worked.failure = error.what();
	}
	left_behind_.insert(left_behind_.end(), worked.left_behind.begin(), worked.left_behind.end());
	return worked;
}

worked_t enquiry_t::ask_plugin(const plugin_t &of, UINT code, const std::string &argument)
{
	const query_t &query = query_of(code);
	return work(query.stage, query.runs_tool ? place_t::PRIVATE : place_t::HERE,
	            [&](const worker_link_t &to) {
			    const plugin_list_t list(of, code, argument);
			    const std::vector<char> bytes = pack(query, list.head());
			    to.result(bytes.data(), bytes.size());
		    });
}

enquiry_t::~enquiry_t() = default;

raid_site_t &enquiry_t::raid()
{
	if (!raid_)
		raid_ = std::make_unique<raid_site_t>(*this, *classic_, named_, is_raid_as_before_);
	return *raid_;
}

// The codes of the plug-ins are different ones.
const item_list_t &enquiry_t::remembered(const plugin_t &of, UINT query)
{
	const auto found = lists_.find(query);
	if (found != lists_.end())
		return found->second;
	return lists_
	        .emplace(std::piecewise_construct, std::forward_as_tuple(query),
	                 std::forward_as_tuple(query, ask_plugin(of, query, "")))
	        .first->second;
}

const item_list_t &enquiry_t::list(UINT query)
{
	return remembered(*classic_, query);
}

const item_list_t &enquiry_t::block_list(UINT query)
{
	return remembered(*block_, query);
}

item_list_t enquiry_t::ask(UINT query, const std::string &argument)
{
	return {query, ask_plugin(*classic_, query, argument)};
}

std::optional<std::string> enquiry_t::controller()
{
	if (!named_.empty())
		return named_;
	const auto listed = controllers().records<aac_controller>();
	if (listed.empty())
		return std::nullopt;
	return text_of(listed.front()->Adapter_Name);
}

const std::vector<std::string_view> &enquiry_t::mounted(std::string_view device)
{
	static const std::vector<std::string_view> NOWHERE;
	if (!places_) {
		places_.emplace();
		for (const block_mount *m : block_list(CMD_GET_BLOCK_MOUNTS).records<block_mount>()) {
			const std::string_view place = m->mount_point ? m->mount_point : "[SWAP]";
			for (const block_text *d = m->devices; d; d = d->next)
				(*places_)[d->text].push_back(place);
		}
	}
	const auto found = places_->find(device);
	return found == places_->end() ? NOWHERE : found->second;
}
