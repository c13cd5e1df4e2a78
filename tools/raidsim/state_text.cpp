// SPDX-License-Identifier: Apache-2.0
// The state as text: a record a line, fields as key=value in any order.
//
//   controller name=aac0 type="EXAMPLE 2200S" availability=read/write ...
//   disk at=0:02:0 type=Disk vendor=ACME ...
//   container number=0 type=Mirror size_kb=10485760 ...
//   piece at=0:02:0 offset_kb=64 size_kb=10485760 rebuild=no
//   spare at=0:04:0
//   task id=101 function=Bld/Vfy ...
//
// A disk, a container or a task belongs to the controller above it, a piece or a spare to the
// container above it. Text with blanks, and empty text, stands in double quotes.
#include "state_text.h"

#include "state_fields.h"
#include "text.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <map>
#include <sstream>

static const char HEADER[] = "# State of the simulated controllers; written anew at every change.\n"
			     "format version=1\n";

class field_writer_t
{
public:
	void operator()(const char *key, const std::string &value)
	{
		const bool plain = !value.empty() && value.find_first_of(" \t") == std::string::npos;
		text += plain ? fmt::format(" {}={}", key, value) : fmt::format(" {}=\"{}\"", key, value);
	}
	void operator()(const char *key, int value) { text += fmt::format(" {}={}", key, value); }
	void operator()(const char *key, std::int64_t value) { text += fmt::format(" {}={}", key, value); }
	void operator()(const char *key, bool value)
	{
		text += fmt::format(" {}={}", key, value ? "yes" : "no");
	}
	void operator()(const char *key, const address_t &value) { (*this)(key, address_text(value)); }

	std::string text;
};

template <typename Record> static std::string line_of(const char *word, Record &record)
{
	field_writer_t writer;
	visit(record, writer);
	return word + writer.text + "\n";
}

std::string state_as_text(state_t all)
{
	std::string text = HEADER;
	for (controller_t &c : all.controllers) {
		text += "\n" + line_of("controller", c);
		for (disk_t &d : c.disks)
			text += line_of("disk", d);
		for (container_t &k : c.containers) {
			text += line_of("container", k);
			for (piece_t &p : k.pieces)
				text += line_of("piece", p);
			for (address_t &a : k.spares)
				text += line_of("spare", a);
		}
		for (task_t &t : c.tasks)
			text += line_of("task", t);
	}
	return text;
}

class field_reader_t
{
public:
	// Takes the fields behind the first word of a line apart.
	explicit field_reader_t(std::string_view rest)
	{
		for (rest = trimmed(rest); !rest.empty(); rest = trimmed(rest)) {
			const std::size_t equals = rest.find('=');
			if (equals == std::string_view::npos)
				throw state_error_t(fmt::format("\"{}\" is no key=value", rest));
			const std::string key(rest.substr(0, equals));
			rest.remove_prefix(equals + 1);
			if (!fields_.emplace(key, take_value(rest)).second)
				throw state_error_t(fmt::format("\"{}\" stands twice", key));
		}
	}

	void operator()(const char *key, std::string &value) { value = take(key); }
	void operator()(const char *key, int &value)
	{
		const std::string text = take(key);
		value = -1;
		if (text != "-1")
			value = static_cast<int>(number(key, text, std::numeric_limits<int>::max()));
	}
	void operator()(const char *key, std::int64_t &value)
	{
		// Larger sizes would overflow where they are added or multiplied.
		value = number(key, take(key), INT64_C(1) << 40);
	}
	void operator()(const char *key, bool &value)
	{
		const std::string text = take(key);
		if (text != "yes" && text != "no")
			throw state_error_t(fmt::format("{}={} is neither yes nor no", key, text));
		value = text == "yes";
	}
	void operator()(const char *key, address_t &value)
	{
		std::string text = take(key);
		for (char &c : text)
			c = c == ':' ? ' ' : c;
		const std::vector<std::string> parts = words_of(text);
		if (parts.size() != 3)
			throw state_error_t(fmt::format("{}={} is no address", key, text));
		value.channel = static_cast<int>(number(key, parts[0], 9));
		value.id = static_cast<int>(number(key, parts[1], 99));
		value.lun = static_cast<int>(number(key, parts[2], 9));
	}

	void expect_no_more() const
	{
		if (!fields_.empty())
			throw state_error_t(fmt::format("\"{}\" is not known here", fields_.begin()->first));
	}

private:
	static std::string take_value(std::string_view &rest)
	{
		const bool quoted = !rest.empty() && rest.front() == '"';
		if (quoted)
			rest.remove_prefix(1);
		const std::size_t end =
			quoted ? rest.find('"') : std::min(rest.find_first_of(" \t"), rest.size());
		if (end == std::string_view::npos)
			throw state_error_t("a quotation mark is missing");
		std::string value(rest.substr(0, end));
		rest.remove_prefix(end + (quoted ? 1 : 0));
		return value;
	}

	std::string take(const char *key)
	{
		const auto found = fields_.find(key);
		if (found == fields_.end())
			throw state_error_t(fmt::format("\"{}\" is missing", key));
		std::string value = found->second;
		fields_.erase(found);
		return value;
	}

	static std::int64_t number(const char *key, const std::string &text, std::int64_t limit)
	{
		const std::optional<std::int64_t> value = number_of(text, limit);
		if (!value)
			throw state_error_t(fmt::format("{}={} is no number in range", key, text));
		return *value;
	}

	std::map<std::string, std::string> fields_;
};

template <typename Record> static Record record_of(std::string_view rest)
{
	field_reader_t reader(rest);
	Record record;
	visit(record, reader);
	reader.expect_no_more();
	return record;
}

template <typename Owner> static Owner &last_of(std::vector<Owner> &owners, const char *name)
{
	if (owners.empty())
		throw state_error_t(fmt::format("there is no {} above", name));
	return owners.back();
}

static void read_format(state_t &, std::string_view rest)
{
	if (record_of<version_t>(rest).number != 1)
		throw state_error_t("the format's version is not 1");
}

static void read_controller(state_t &all, std::string_view rest)
{
	all.controllers.push_back(record_of<controller_t>(rest));
}

static void read_disk(state_t &all, std::string_view rest)
{
	last_of(all.controllers, "controller").disks.push_back(record_of<disk_t>(rest));
}

static void read_container(state_t &all, std::string_view rest)
{
	last_of(all.controllers, "controller").containers.push_back(record_of<container_t>(rest));
}

static container_t &last_container(state_t &all)
{
	return last_of(last_of(all.controllers, "controller").containers, "container");
}

static void read_piece(state_t &all, std::string_view rest)
{
	last_container(all).pieces.push_back(record_of<piece_t>(rest));
}

static void read_spare(state_t &all, std::string_view rest)
{
	last_container(all).spares.push_back(record_of<address_t>(rest));
}

static void read_task(state_t &all, std::string_view rest)
{
	last_of(all.controllers, "controller").tasks.push_back(record_of<task_t>(rest));
}

struct line_kind_t {
	const char *word;
	void (*read)(state_t &all, std::string_view rest);
};

static const line_kind_t KINDS[] = {
	{"format", read_format},       {"controller", read_controller}, {"disk", read_disk},
	{"container", read_container}, {"piece", read_piece},           {"spare", read_spare},
	{"task", read_task},
};

static void read_line(state_t &all, std::string_view line)
{
	const std::string_view word = line.substr(0, line.find(' '));
	for (const line_kind_t &kind : KINDS) {
		if (word == kind.word) {
			kind.read(all, line.substr(word.size()));
			return;
		}
	}
	throw state_error_t(fmt::format("\"{}\" is no kind of record", word));
}

state_t state_from_text(const std::string &text)
{
	state_t all;
	std::istringstream lines(text);
	std::string line;
	for (int number = 1; std::getline(lines, line); number++) {
		const std::string_view content = trimmed(line);
		if (content.empty() || content.front() == '#')
			continue;
		try {
			read_line(all, content);
		} catch (const state_error_t &error) {
			throw state_error_t(fmt::format("line {}: {}", number, error.what()));
		}
	}
	return all;
}
