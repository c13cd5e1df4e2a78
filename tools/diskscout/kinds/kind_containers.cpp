// SPDX-License-Identifier: Apache-2.0
// RAID containers: the logical drives of controllers, and how they are.
#include "raid.h"
#include "raid_state.h"

#include <deque>

using container_t = HWRAID_LIST;

static const raid_container_t &whole(const row_t &row)
{
	return record_of<shown_container_t>(row).container;
}

static const raid_state_t &state_of(const row_t &row)
{
	return record_of<shown_container_t>(row).state;
}

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

static void put_state(const row_t &row, sink_t &to)
{
	to.text(word_of(state_of(row).state));
}

static std::string state_cell(const row_t &row)
{
	return words_of(state_of(row));
}

static void put_permille(const row_t &row, sink_t &to)
{
	if (state_of(row).rebuilt_permille < 0)
		to.absent();
	else
		to.number(state_of(row).rebuilt_permille);
}

static void put_label(const row_t &row, sink_t &to)
{
	put_text(text_of(whole(row).label), to);
}

static void put_device(const row_t &row, sink_t &to)
{
	put_text(text_of(whole(row).device), to);
}

static constexpr field_t FIELDS[] = {
	controller_field<raid_container_t>(),
	number<&container_t::nRaidID>("raid_id", "ID", "the container's number"),
	number<&container_t::nDiskNumber>("disk_number", "MEMBERS", "how many members it has"),
	{"members", "MADE OF", shape_t::OBJECTS, OLD, "", put_old_members, MEMBER_FIELDS, member_cell},
	{"members", "MADE OF", shape_t::OBJECTS, NEW, "disks, or containers of a container of containers",
         put_members, MEMBER_FIELDS, member_cell},
	number<&container_t::RaidType>("type", "TYPE CODE", "code of type_word"),
	word<&container_t::RaidType, CONTAINER_TYPES>("type_word", "TYPE", "null for a code without a word"),
	bytes<&container_t::nTotalSize>("total_size", "SIZE", "", OLD),
	told<&raid_container_t::total_size>("total_size", "SIZE",
                                            "bytes; null: no more is told than total_size_low32"),
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
	text<&container_t::szLabel>("label", "LABEL", "", OLD),
	{"label", "LABEL", shape_t::TEXT, NEW | MAY_LACK, "name that was given to it", put_label},
	{"state",
         "STATE",
         shape_t::TEXT,
         NEW,
         "optimal, degraded, rebuilding, failed, or unknown where not all could be asked",
         put_state,
         {},
         state_cell},
	{"rebuilt_permille", "REBUILT", shape_t::NUMBER, NEW | MAY_LACK, "0 to 1000, how far a rebuild is",
         put_permille},
	{"device", "DEVICE", shape_t::TEXT, NEW | MAY_LACK,
         "the operating system's name of it, where it is told", put_device},
};

// Without the disks, their pieces or the tasks nobody knows how the containers are.
static void add_failures_beside(raid_site_t &site, const std::string &controller, answer_t &answer)
{
	if (site.is_as_before() || site.containers(controller).rows.empty())
		return;
	const auto add = [&](const char *where, raid_failure_t failure) {
		failure.where = where;
		add_failure(site, controller, failure, answer);
	};
	add(" at the list of disks", site.disks(controller));
	add(" at the list of pieces", site.pieces(controller));
	// Where no operation tells the tasks the states are unknown without anything being wrong.
	if (site.tasks(controller).from_operations)
		add(" at the list of tasks", site.tasks(controller));
}

static answer_t ask(enquiry_t &from)
{
	raid_site_t &site = from.raid();
	const auto shown = std::make_shared<std::deque<shown_container_t>>();
	answer_t answer = begin_answer(site);
	answer.records = shown;
	for (const std::string &name : site.names()) {
		const raid_list_t<raid_container_t> &list = site.containers(name);
		const std::vector<raid_state_t> states = states_of(site, name);
		add_failure(site, name, list, answer);
		for (std::size_t i = 0; i < list.rows.size(); i++)
			answer.rows.push_back(
				{&shown->emplace_back(shown_container_t{list.rows[i], states[i]}), &from});
		add_failures_beside(site, name, answer);
	}
	return answer;
}

const kind_t CONTAINERS_KIND = {
	"containers",
	"containers",
	"CONTAINERS",
	"container",
	"what the RAID controllers make of their disks",
	"No RAID controller has a container.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"controller,raid_id,label,type_word,total_size,state,device,usage_word,stripe_size,hot_spare,"
	"disk_number,members",
	"raid_id,label,type_word,usage_word,total_size_low32,stripe_size,hot_spare,disk_number,members",
	ask,
	"MOD 4 GIB leaves out whole multiples of 4 GiB; raid-partitions shows sizes in full.",
	nullptr,
	"disk_number,usage_word,stripe_size,hot_spare",
	"The controller has no container.",
};
