// What one run asks the plug-ins.
#include "enquiry.h"

#include "diskscout_block.h"
#include "text.h"

#include <tuple>

enquiry_t::enquiry_t(const plugin_t *classic, const plugin_t *block, std::string controller)
    : classic_(classic), block_(block), named_(std::move(controller))
{
}

// The codes of the plug-ins are different ones.
const item_list_t &enquiry_t::remembered(const plugin_t &of, UINT query, const std::string &argument)
{
	const auto found = lists_.find(query);
	if (found != lists_.end())
		return found->second;
	return lists_
	        .emplace(std::piecewise_construct, std::forward_as_tuple(query),
	                 std::forward_as_tuple(of, query, argument))
	        .first->second;
}

const item_list_t &enquiry_t::list(UINT query)
{
	return remembered(*classic_, query, "");
}

const item_list_t &enquiry_t::block_list(UINT query)
{
	return remembered(*block_, query, "");
}

const item_list_t &enquiry_t::list_of_controller(UINT query)
{
	return remembered(*classic_, query, controller().value_or(""));
}

item_list_t enquiry_t::ask(UINT query, const std::string &argument) const
{
	return {*classic_, query, argument};
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
