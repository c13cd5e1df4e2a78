// SPDX-License-Identifier: Apache-2.0
// Where the value of a field goes: into a document, into a cell of a table, into a key to sort by.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SINK_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SINK_H

#include <cstdint>
#include <string_view>

// One value is put: absent, a flag, a number, a text, or a list or an object with values in it. Texts may
// hold any bytes.
class sink_t
{
public:
	virtual ~sink_t() = default;

	virtual void absent() = 0;
	virtual void flag(bool value) = 0;
	virtual void number(std::int64_t value) = 0;
	virtual void large(std::uint64_t value) = 0; // a number that may be beyond the signed ones
	virtual void text(std::string_view value) = 0;

	virtual void begin_list() = 0;
	virtual void end_list() = 0;
	virtual void begin_object() = 0;
	virtual void key(std::string_view name) = 0; // before each value of an object
	virtual void end_object() = 0;
};

#endif
