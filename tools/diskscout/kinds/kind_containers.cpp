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

static std::vector<int> members_of(const container_t &c)
{
	std::vector<int> members;
	for (const int member : c.nPosition) {
		if (member != NO_ADDRESS)
			members.push_back(member);
	}
	return members;
}

static std::string member_cell(const row_t &row)
{
	std::string text;
	for (const int member : members_of(record_of<container_t>(row))) {
		text += text.empty() ? "" : ", ";
		text += is_container(member) ? "container " + std::to_string(member) : address(member);
	}
	return text.empty() ? "-" : text;
}

static void put_container(const row_t &row, sink_t &to)
{
	const int member = record_of<int>(row);
	if (is_container(member))
		to.number(member);
	else
		to.absent();
}

// Of an address only: a container's number has no parts.
template <int Of> static void put_address_part(const row_t &row, sink_t &to)
{
	if (is_container(record_of<int>(row)))
		to.absent();
	else
		ADDRESS_FIELDS[Of].put(row, to);
}

static void put_position(const row_t &row, sink_t &to)
{
	ADDRESS_FIELDS[0].put(row, to);
}

static constexpr field_t MEMBER_FIELDS[] = {
	{"position", "POSITION", shape_t::NUMBER, OLD | NEW, "as the record holds it", put_position},
	{"container", "CONTAINER", shape_t::NUMBER, NEW | MAY_LACK,
         "number of the container that is the member", put_container},
	{"channel", "CHANNEL", shape_t::NUMBER, NEW | MAY_LACK, "of a disk", put_address_part<1>},
	{"id", "ID", shape_t::NUMBER, NEW | MAY_LACK, "of a disk", put_address_part<2>},
	{"lun", "LUN", shape_t::NUMBER, NEW | MAY_LACK, "of a disk", put_address_part<3>},
};

// A container's object has other keys there than a disk's.
static constexpr field_t OLD_CONTAINER_FIELDS[] = {
	MEMBER_FIELDS[0],
	{"container", "CONTAINER", shape_t::NUMBER, OLD, "", put_container},
};

static void put_old_members(const row_t &row, sink_t &to)
{
	to.begin_list();
	for (const int member : members_of(record_of<container_t>(row)))
		put_object(is_container(member) ? fields_t(OLD_CONTAINER_FIELDS) : fields_t(ADDRESS_FIELDS),
		           OLD, {&member}, to);
	to.end_list();
}

static void put_members(const row_t &row, sink_t &to)
{
	to.begin_list();
	for (const int member : members_of(record_of<container_t>(row)))
		put_object(MEMBER_FIELDS, NEW, {&member}, to);
	to.end_list();
}

static std::string stripe_cell(const row_t &row)
{
	const long long size = record_of<container_t>(row).nStripeSize;
	return size == 0 ? "-" : signed_size(size);
}

static constexpr field_t FIELDS[] = {
	number<&container_t::nRaidID>("raid_id", "ID", "the container's number"),
	number<&container_t::nDiskNumber>("disk_number", "MEMBERS", "how many members it has"),
	{"members", "MADE OF", shape_t::OBJECTS, OLD, "", put_old_members, MEMBER_FIELDS, member_cell},
	{"members", "MADE OF", shape_t::OBJECTS, NEW, "disks, or containers of a container of containers",
         put_members, MEMBER_FIELDS, member_cell},
	number<&container_t::RaidType>("type", "TYPE CODE", "code of type_word"),
	word<&container_t::RaidType, CONTAINER_TYPES>("type_word", "TYPE", "null for a code without a word"),
	bytes<&container_t::nTotalSize>("total_size", "SIZE", "", OLD),
	{"total_size", "SIZE", shape_t::BYTES, NEW | MAY_LACK,
         "bytes; null: the query tells no more than total_size_low32", put_nothing},
	low32<&container_t::nTotalSize>(
		"total_size_low32", "SIZE MOD 4 GIB",
		"total_size without whole multiples of 4 GiB, as the record holds it"),
	bytes<&container_t::nStripeSize>("stripe_size", "STRIPE", "", OLD),
	{"stripe_size",
         "STRIPE",
         shape_t::BYTES,
         NEW | MAY_LACK,
         "bytes",
         known_member<&container_t::nStripeSize>,
         {},
         stripe_cell},
	number<&container_t::Usage>("usage", "USAGE CODE", "code of usage_word"),
	word<&container_t::Usage, USAGES>("usage_word", "USAGE", "null for a code without a word"),
	address_field<&container_t::nHotSpare>("hot_spare", "HOT SPARE",
                                               "disk that waits to replace one of its own"),
	text<&container_t::szLabel>("label", "LABEL", "name that was given to it"),
};

const kind_t CONTAINERS_KIND = {
	"containers",
	"containers",
	"CONTAINERS",
	"container",
	"The controller has no container.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"raid_id,label,type_word,usage_word,total_size_low32,stripe_size,hot_spare,disk_number,members",
	nullptr,
	ask_for_controller<container_t, CMD_GET_CONTAINERS>,
	"MOD 4 GIB leaves out whole multiples of 4 GiB; raid-partitions shows sizes in full.",
};
