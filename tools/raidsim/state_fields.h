// SPDX-License-Identifier: Apache-2.0
// The fields of each record in the state file. One list serves reading and writing alike: the visitor is
// called with each field's key and a reference to the field.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_STATE_FIELDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_STATE_FIELDS_H

#include "state.h"

// The first line.
struct version_t {
	int number = 1;
};

template <typename Visitor> void visit(version_t &v, Visitor &field)
{
	field("version", v.number);
}

template <typename Visitor> void visit(address_t &a, Visitor &field)
{
	field("at", a);
}

template <typename Visitor> void visit(piece_t &p, Visitor &field)
{
	field("at", p.at);
	field("offset_kb", p.offset_kb);
	field("size_kb", p.size_kb);
	field("rebuild", p.rebuild);
}

template <typename Visitor> void visit(container_t &c, Visitor &field)
{
	field("number", c.number);
	field("type", c.type);
	field("size_kb", c.size_kb);
	field("stripe_kb", c.stripe_kb);
	field("usage", c.usage);
	field("device", c.device);
	field("label", c.label);
	field("parent", c.parent);
	field("data", c.data);
}

template <typename Visitor> void visit(disk_t &d, Visitor &field)
{
	field("at", d.at);
	field("type", d.type);
	field("removable", d.removable);
	field("vendor", d.vendor);
	field("product", d.product);
	field("revision", d.revision);
	field("blocks", d.blocks);
	field("bytes_per_block", d.bytes_per_block);
	field("usage", d.usage);
	field("shared", d.shared);
	field("rate", d.rate);
	field("primary_defects", d.primary_defects);
	field("grown_defects", d.grown_defects);
	field("bad_status", d.bad_status);
}

template <typename Visitor> void visit(task_t &t, Visitor &field)
{
	field("id", t.id);
	field("function", t.function);
	field("done", t.done);
	field("step", t.step);
	field("container", t.container);
	field("state", t.state);
}

template <typename Visitor> void visit(controller_t &c, Visitor &field)
{
	field("name", c.name);
	field("type", c.type);
	field("availability", c.availability);
	field("clustering", c.clustering);
	field("opens", c.opens);
	field("channels", c.channels);
	field("next_task", c.next_task);
}

#endif
