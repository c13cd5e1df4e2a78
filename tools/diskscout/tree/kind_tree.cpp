// SPDX-License-Identifier: Apache-2.0
// The tree of the whole machine: what is told of a node.
#include "node.h"

#include "cell.h"
#include "member.h"
#include "raid.h"

#include <algorithm>
#include <fmt/format.h>

enum class value_t {
	LABEL,
	RAID_ID,
	TYPE,
	SIZE,
	OFFSET,
	STATE,
	DONE,
	NODE,
	TRANSPORT,
	VENDOR,
	MODEL,
	SERIAL,
	MOUNT_POINTS
};

// Which field of which kind a value is.
struct origin_t {
	value_t value;
	const kind_t *kind;
	std::string_view key;
};

static const origin_t ORIGINS[] = {
	{value_t::MODEL, &CONTROLLERS_KIND, "adapter_type"},
	{value_t::STATE, &CONTROLLERS_KIND, "availability_word"},
	{value_t::LABEL, &CONTAINERS_KIND, "label"},
	{value_t::RAID_ID, &CONTAINERS_KIND, "raid_id"},
	{value_t::TYPE, &CONTAINERS_KIND, "type_word"},
	{value_t::SIZE, &CONTAINERS_KIND, "total_size"},
	{value_t::STATE, &CONTAINERS_KIND, "state"},
	{value_t::DONE, &CONTAINERS_KIND, "rebuilt_permille"},
	{value_t::NODE, &CONTAINERS_KIND, "device"},
	{value_t::TYPE, &RAID_DISKS_KIND, "device_type_word"},
	{value_t::SIZE, &RAID_DISKS_KIND, "size"},
	{value_t::STATE, &RAID_DISKS_KIND, "usage_word"},
	{value_t::VENDOR, &RAID_DISKS_KIND, "vendor"},
	{value_t::MODEL, &RAID_DISKS_KIND, "model"},
	{value_t::OFFSET, &RAID_SPACE_KIND, "offset"},
	{value_t::SIZE, &RAID_SPACE_KIND, "free_space"},
	{value_t::TYPE, &ARRAYS_KIND, "level"},
	{value_t::STATE, &ARRAYS_KIND, "state"},
	{value_t::SIZE, &DISKS_KIND, "size"},
	{value_t::NODE, &DISKS_KIND, "device_name"},
	{value_t::TRANSPORT, &DISKS_KIND, "interface"},
	{value_t::VENDOR, &DISKS_KIND, "vendor"},
	{value_t::MODEL, &DISKS_KIND, "model"},
	{value_t::SERIAL, &DISKS_KIND, "serial_number"},
	{value_t::SIZE, &PARTITIONS_KIND, "size"},
	{value_t::NODE, &PARTITIONS_KIND, "device_name"},
	{value_t::MOUNT_POINTS, &PARTITIONS_KIND, "mount_points"},
	{value_t::LABEL, &DEVICES_KIND, "dm_name"},
	{value_t::TYPE, &DEVICES_KIND, "dm_kind"},
	{value_t::SIZE, &DEVICES_KIND, "size"},
	{value_t::STATE, &DEVICES_KIND, "state"},
	{value_t::NODE, &DEVICES_KIND, "node"},
	{value_t::TRANSPORT, &DEVICES_KIND, "transport"},
	{value_t::VENDOR, &DEVICES_KIND, "vendor"},
	{value_t::MODEL, &DEVICES_KIND, "model"},
	{value_t::SERIAL, &DEVICES_KIND, "serial"},
	{value_t::MOUNT_POINTS, &DEVICES_KIND, "mount_points"},
};

static const tree_node_t &node_of(const row_t &row)
{
	return record_of<tree_node_t>(row);
}

static const field_t *field_of(const kind_t &kind, std::string_view key)
{
	const auto *const found = std::find_if(kind.fields.begin(), kind.fields.end(), [&](const field_t &f) {
		return f.key == key && (f.traits & (OLD | NEW)) != OLD;
	});
	return found == kind.fields.end() ? nullptr : found;
}

namespace
{
struct told_t {
	const field_t *field; // null: nobody tells it
	row_t row;
};
} // namespace

static told_t told_of(const tree_node_t &node, value_t value)
{
	for (const source_t &source : node.sources) {
		for (const origin_t &origin : ORIGINS) {
			if (origin.value != value || origin.kind != source.kind)
				continue;
			if (const field_t *const field = field_of(*source.kind, origin.key))
				return {field, source.row};
		}
	}
	return {nullptr, {nullptr}};
}

template <value_t Value> static void put_told(const row_t &row, sink_t &to)
{
	const told_t told = told_of(node_of(row), Value);
	if (told.field)
		told.field->put(told.row, to);
	else
		to.absent();
}

template <value_t Value> static std::string told_cell(const row_t &row)
{
	const told_t told = told_of(node_of(row), Value);
	return told.field ? cell_of(*told.field, told.row, sizes_t::IN_UNITS).front() : "-";
}

// Empty when nobody knows it.
static std::string raw(const tree_node_t &node, value_t value)
{
	const told_t told = told_of(node, value);
	return told.field ? raw_cell_of(*told.field, told.row) : "";
}

// ---- what the node has of its own ----

template <auto Member> static void put_text(const row_t &row, sink_t &to)
{
	to.text(node_of(row).*Member);
}

template <auto Member> static void put_optional(const row_t &row, sink_t &to)
{
	if (node_of(row).*Member)
		to.text(*(node_of(row).*Member));
	else
		to.absent();
}

template <auto Member> static void put_texts(const row_t &row, sink_t &to)
{
	to.begin_list();
	for (const std::string &text : node_of(row).*Member)
		to.text(text);
	to.end_list();
}

static void put_mount_points(const row_t &row, sink_t &to)
{
	const told_t told = told_of(node_of(row), value_t::MOUNT_POINTS);
	if (told.field)
		return told.field->put(told.row, to);
	to.begin_list();
	to.end_list();
}

static void put_address(const row_t &row, sink_t &to)
{
	put_address(node_of(row).address.value_or(NO_ADDRESS), to);
}

static std::string address_cell(const row_t &row)
{
	return address(node_of(row).address.value_or(NO_ADDRESS));
}

static void put_raid_id(const row_t &row, sink_t &to)
{
	if (node_of(row).raid_id)
		to.number(*node_of(row).raid_id);
	else
		put_told<value_t::RAID_ID>(row, to);
}

static void put_state(const row_t &row, sink_t &to)
{
	if (node_of(row).state)
		to.text(*node_of(row).state);
	else
		put_told<value_t::STATE>(row, to);
}

static void put_done(const row_t &row, sink_t &to)
{
	if (node_of(row).done_permille)
		to.number(*node_of(row).done_permille);
	else
		put_told<value_t::DONE>(row, to);
}

// ---- in the picture ----

static std::string name_cell(const row_t &row)
{
	const tree_node_t &node = node_of(row);
	const std::string label = raw(node, value_t::LABEL);
	const std::string &behind = label.empty() ? node.remark : label;
	return behind.empty() ? node.name : fmt::format("{} ({})", node.name, behind);
}

static std::string kind_cell(const row_t &row)
{
	const std::string type = raw(node_of(row), value_t::TYPE);
	return type.empty() || type == "unknown" ? node_of(row).kind : type;
}

static std::string state_cell(const row_t &row)
{
	const tree_node_t &node = node_of(row);
	if (!node.state)
		return told_cell<value_t::STATE>(row);
	if (!node.done_permille)
		return *node.state;
	return fmt::format("{} {}.{} %", *node.state, *node.done_permille / 10, *node.done_permille % 10);
}

// That of a device is known by its name.
static std::string node_cell(const row_t &row)
{
	const tree_node_t &node = node_of(row);
	const std::string path = raw(node, value_t::NODE);
	if (!node.controller || path.empty())
		return "-";
	return node.lacks_device ? path + " (not there)" : path;
}

template <value_t Value>
static constexpr field_t told_text(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::TEXT, NEW | MAY_LACK, what, put_told<Value>};
}

static constexpr field_t FIELDS[] = {
	{"id", "ID", shape_t::TEXT, NEW,
         "no other row has it: aac0, aac0/container/0, aac0/disk/0:01:0, aac0/free/0:01:0/65536, local, sda",
         put_text<&tree_node_t::id>},
	{"parent", "PARENT", shape_t::TEXT, NEW | MAY_LACK,
         "id of the row that it is drawn below, which stands before it; null: below none",
         put_optional<&tree_node_t::parent>},
	{"kind",
         "KIND",
         shape_t::TEXT,
         NEW,
         "controller, container, raid_disk, raid_device (behind a controller and no disk), free, group, "
         "local, or the kind of a device",
         put_text<&tree_node_t::kind>,
         {},
         kind_cell},
	{"name",
         "NAME",
         shape_t::TEXT,
         NEW,
         "as people call it",
         put_text<&tree_node_t::name>,
         {},
         name_cell},
	told_text<value_t::LABEL>("label", "LABEL", "of a container, or the name of a mapping"),
	{"controller", "CONTROLLER", shape_t::TEXT, NEW | MAY_LACK,
         "the RAID controller that it is behind; null for what the kernel sees",
         put_optional<&tree_node_t::controller>},
	{"raid_id", "RAID ID", shape_t::NUMBER, NEW | MAY_LACK, "a container's number", put_raid_id},
	{"address", "ADDRESS", shape_t::OBJECT, NEW | MAY_LACK,
         "of a disk behind a controller, or of that of a free area", put_address, ADDRESS_FIELDS,
         address_cell},
	told_text<value_t::TYPE>("type", "TYPE",
                                 "of a container, a device behind a controller, an array, a mapping"),
	{"size",
         "SIZE",
         shape_t::BYTES,
         NEW | MAY_LACK,
         "bytes",
         put_told<value_t::SIZE>,
         {},
         told_cell<value_t::SIZE>},
	{"offset", "OFFSET", shape_t::BYTES, NEW | MAY_LACK,
         "of a free area: bytes from the disk's beginning", put_told<value_t::OFFSET>},
	{"state",
         "STATE",
         shape_t::TEXT,
         NEW | MAY_LACK,
         "of a container and of an array with less than it was made for: degraded, rebuilding ...; of a disk "
         "behind a controller its usage, or missing; else the kernel's word",
         put_state,
         {},
         state_cell},
	{"done_permille", "DONE", shape_t::NUMBER, NEW | MAY_LACK,
         "how far it is with what its state says: 0 to 1000", put_done},
	{"stands_on", "STANDS ON", shape_t::TEXTS, NEW, "ids of the rows that it is made of",
         put_texts<&tree_node_t::stands_on>},
	{"spare_of", "SPARE OF", shape_t::TEXTS, NEW, "ids of the containers whose hot spare it is",
         put_texts<&tree_node_t::spare_of>},
	{"node",
         "NODE",
         shape_t::TEXT,
         NEW | MAY_LACK,
         "device node; of a container the one that the controller's tool tells",
         put_told<value_t::NODE>,
         {},
         node_cell},
	told_text<value_t::TRANSPORT>("transport", "BUS", "of a device"),
	told_text<value_t::VENDOR>("vendor", "VENDOR", "of a disk"),
	told_text<value_t::MODEL>("model", "MODEL", "of a disk, or of a controller"),
	told_text<value_t::SERIAL>("serial", "SERIAL", "serial number"),
	{"mount_points", "MOUNT POINTS", shape_t::TEXTS, NEW,
         "where a device is mounted, [SWAP] for a swap area", put_mount_points},
	{"shared", "ALSO ON", shape_t::TEXTS, 0, "what it stands on and what is drawn below another one",
         put_texts<&tree_node_t::shared>},
	{"cause", "NOT TOLD", shape_t::TEXT, NEW | MAY_LACK, "what below it could not be asked, and why",
         put_optional<&tree_node_t::cause>},
};

const kind_t TREE_KIND = {
	"tree",
	"",
	"STORAGE",
	"tree",
	"the whole machine",
	"",
	side_t::BLOCK,
	0,
	FIELDS,
	"name,kind,size,state,transport,model,serial,node,mount_points,shared,cause",
	nullptr,
	nullptr,
	{},
	nullptr,
	"serial,transport,model,mount_points,node",
};
