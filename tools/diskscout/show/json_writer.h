// SPDX-License-Identifier: Apache-2.0
// A JSON document, written as it is put: two blanks for each depth, a value a line.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_JSON_WRITER_H
#define DISKSCOUT_TOOLS_DISKSCOUT_JSON_WRITER_H

#include "sink.h"

#include <string>

// No tree of it is held: with thousands of devices making one takes longer than asking for them, and so does
// a string that grows: who expects much reserves it. A text may be any bytes; what is no UTF-8 becomes
// U+FFFD, one for each longest beginning of a character, for a replaced character is better than no document.
// Keys are plain words and stand as they are.
class json_writer_t : public sink_t
{
public:
	explicit json_writer_t(std::string &into) : into_(into) {}

	void absent() override;
	void flag(bool value) override;
	void number(std::int64_t value) override;
	void large(std::uint64_t value) override;
	void text(std::string_view value) override;
	void begin_list() override { open('['); }
	void end_list() override { close(']'); }
	void begin_object() override { open('{'); }
	void key(std::string_view name) override;
	void end_object() override { close('}'); }

private:
	void put(std::string_view word);
	void begin_value();
	void open(char bracket);
	void close(char bracket);
	void new_line(bool is_behind_another);
	void quote(std::string_view text);

	std::string &into_;
	std::size_t depth_ = 0;
	bool is_first_ = true;  // nothing stands in this list or object yet
	bool is_keyed_ = false; // the key of the next value stands there already
};

#endif
