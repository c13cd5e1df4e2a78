// RAID containers: the logical drives of a controller.
#include "raid.h"

using container = HWRAID_LIST;

// The controller tool has two words for not knowing; the numbers tell them apart.
static constexpr coded_word usages[] = {
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

static std::vector<int> members_of(const container &c)
{
	std::vector<int> members;
	for (const int member : c.nPosition) {
		if (member != NO_ADDRESS)
			members.push_back(member);
	}
	return members;
}

static std::string member_text(const container &c)
{
	std::string text;
	for (const int member : members_of(c)) {
		text += text.empty() ? "" : ", ";
		text += is_container(member) ? "container " + std::to_string(member) : address(member);
	}
	return text.empty() ? "-" : text;
}

static ordered_json member_array(const container &c)
{
	ordered_json array = ordered_json::array();
	for (const int member : members_of(c)) {
		if (is_container(member))
			array.push_back({{"position", member}, {"container", member}});
		else
			array.push_back(json_address(member));
	}
	return array;
}

static std::string stripe_of(const container &c)
{
	return c.nStripeSize == 0 ? "-" : signed_size(c.nStripeSize);
}

static const column<container> columns[] = {
	{"ID", align::right, [](const container &c) { return std::to_string(c.nRaidID); }},
	{"LABEL", align::left, [](const container &c) { return shown(c.szLabel); }},
	{"TYPE", align::left, [](const container &c) { return word_of(c.RaidType, container_types); }},
	{"USAGE", align::left, [](const container &c) { return word_of(c.Usage, usages); }},
	{"SIZE MOD 4 GIB", align::right, [](const container &c) { return size_modulo_4_gib(c.nTotalSize); }},
	{"STRIPE", align::right, stripe_of},
	{"HOT SPARE", align::left, [](const container &c) { return address(c.nHotSpare); }},
	{"MEMBERS", align::right, [](const container &c) { return std::to_string(c.nDiskNumber); }},
	{"MADE OF", align::left, member_text},
};

static ordered_json object(const container &c)
{
	return {
		{"raid_id", c.nRaidID},
		{"disk_number", c.nDiskNumber},
		{"members", member_array(c)},
		{"type", c.RaidType},
		{"type_word", json_word(c.RaidType, container_types)},
		{"total_size", c.nTotalSize},
		{"stripe_size", c.nStripeSize},
		{"usage", c.Usage},
		{"usage_word", json_word(c.Usage, usages)},
		{"hot_spare", json_address(c.nHotSpare)},
		{"label", json_text(c.szLabel)},
	};
}

static answer ask(enquiry &from)
{
	return answer_of(from.ask(CMD_GET_CONTAINERS, from.controller().value_or("")), columns, object);
}

const kind containers_kind = {
	"containers",
	"CONTAINERS",
	"container",
	"The controller has no container.",
	scope::controller,
	ask,
	"MOD 4 GIB leaves out whole multiples of 4 GiB; raid-partitions shows sizes in full.",
};
