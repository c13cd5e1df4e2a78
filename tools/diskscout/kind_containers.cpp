// RAID containers: the logical drives of a controller.
#include "raid.h"

using container_t = HWRAID_LIST;

// The controller tool has two words for not knowing; the numbers tell them apart.
static constexpr coded_word_t USAGES[] = {
	{KESTREL_HWRAID_USAGE_TYPE_UNKNOW, "unknown"},
	{KESTREL_HWRAID_USAGE_TYPE_FAT, "FAT"},
	{KESTREL_HWRAID_USAGE_TYPE_NULTPART, "several partitions"},
	{KESTREL_HWRAID_USAGE_TYPE_NETWARE, "NetWare"},
	{KESTREL_HWRAID_USAGE_TYPE_NONE, "none"},
	{KESTREL_HWRAID_USAGE_TYPE_NTFS, "NTFS"},
	{KESTREL_HWRAID_USAGE_TYPE_OPEN, "open"},
	{KESTREL_HWRAID_USAGE_TYPE_UNCFGED, "not configured"},
	{KESTREL_HWRAID_USAGE_TYPE_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_USAGE_TYPE_UNMAPED, "not mapped"},
	{KESTREL_HWRAID_USAGE_TYPE_VALID, "valid"},
};

// A container made of containers holds their numbers, 24 to 63, in place of disk addresses. No address is
// there: a LUN has one hexadecimal digit.
static bool is_container(int member)
{
	return member >= 24 && member <= 63;
}

static std::vector<int> members_of(const container_t &c)
{
	std::vector<int> members;
	for (const int member : c.nPosition) {
		if (member != NO_ADDRESS)
			members.push_back(member);
	}
	return members;
}

static std::string member_text(const container_t &c)
{
	std::string text;
	for (const int member : members_of(c)) {
		text += text.empty() ? "" : ", ";
		text += is_container(member) ? "container " + std::to_string(member) : address(member);
	}
	return text.empty() ? "-" : text;
}

static ordered_json_t member_array(const container_t &c)
{
	ordered_json_t array = ordered_json_t::array();
	for (const int member : members_of(c)) {
		if (is_container(member))
			array.push_back({{"position", member}, {"container", member}});
		else
			array.push_back(json_address(member));
	}
	return array;
}

static std::string stripe_of(const container_t &c)
{
	return c.nStripeSize == 0 ? "-" : signed_size(c.nStripeSize);
}

static const column_t<container_t> COLUMNS[] = {
	{"ID", align_t::RIGHT, [](const container_t &c) { return std::to_string(c.nRaidID); }},
	{"LABEL", align_t::LEFT, [](const container_t &c) { return shown(c.szLabel); }},
	{"TYPE", align_t::LEFT, [](const container_t &c) { return word_of(c.RaidType, CONTAINER_TYPES); }},
	{"USAGE", align_t::LEFT, [](const container_t &c) { return word_of(c.Usage, USAGES); }},
	{"SIZE MOD 4 GIB", align_t::RIGHT,
         [](const container_t &c) { return size_modulo_4_gib(c.nTotalSize); }},
	{"STRIPE", align_t::RIGHT, stripe_of},
	{"HOT SPARE", align_t::LEFT, [](const container_t &c) { return address(c.nHotSpare); }},
	{"MEMBERS", align_t::RIGHT, [](const container_t &c) { return std::to_string(c.nDiskNumber); }},
	{"MADE OF", align_t::LEFT, member_text},
};

static ordered_json_t object(const container_t &c)
{
	return {
		{"raid_id", c.nRaidID},
		{"disk_number", c.nDiskNumber},
		{"members", member_array(c)},
		{"type", c.RaidType},
		{"type_word", json_word(c.RaidType, CONTAINER_TYPES)},
		{"total_size", c.nTotalSize},
		{"stripe_size", c.nStripeSize},
		{"usage", c.Usage},
		{"usage_word", json_word(c.Usage, USAGES)},
		{"hot_spare", json_address(c.nHotSpare)},
		{"label", json_text(c.szLabel)},
	};
}

static answer_t ask(enquiry_t &from)
{
	return answer_of(from.ask(CMD_GET_CONTAINERS, from.controller().value_or("")), COLUMNS, object);
}

const kind_t CONTAINERS_KIND = {
	"containers",
	"CONTAINERS",
	"container",
	"The controller has no container.",
	scope_t::CONTROLLER,
	ask,
	"MOD 4 GIB leaves out whole multiples of 4 GiB; raid-partitions shows sizes in full.",
};
