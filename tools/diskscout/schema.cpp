// SPDX-License-Identifier: Apache-2.0
// The JSON Schema of the document of format 2.
#include "schema.h"

#include "examination.h"
#include "json_writer.h"
#include "kinds.h"
#include "messages.h"
#include "node.h"
#include "program.h"

#include <functional>

using part_t = std::function<void()>;

class schema_t
{
public:
	std::string text();

private:
	void pair(std::string_view key, std::string_view text)
	{
		to_.key(key);
		to_.text(text);
	}
	void texts(std::string_view key, const std::vector<std::string_view> &values);
	void type(std::string_view name, bool may_lack);
	// An object with these properties, all of them required but the optional ones, and no others.
	void object(const std::vector<std::string_view> &required, const part_t &properties);
	void property(std::string_view key, const part_t &what);
	void list_of(const part_t &items, bool may_lack);
	void described_text(const char *what, bool may_lack);
	void fields(fields_t of);
	void value(const field_t &field);
	void message();
	void check();
	void properties();

	std::string text_;
	json_writer_t to_{text_};
};

void schema_t::texts(std::string_view key, const std::vector<std::string_view> &values)
{
	to_.key(key);
	to_.begin_list();
	for (const std::string_view value : values)
		to_.text(value);
	to_.end_list();
}

void schema_t::type(std::string_view name, bool may_lack)
{
	if (may_lack)
		texts("type", {name, "null"});
	else
		pair("type", name);
}

void schema_t::object(const std::vector<std::string_view> &required, const part_t &properties)
{
	to_.key("properties");
	to_.begin_object();
	properties();
	to_.end_object();
	texts("required", required);
	to_.key("additionalProperties");
	to_.flag(false);
}

void schema_t::property(std::string_view key, const part_t &what)
{
	to_.key(key);
	to_.begin_object();
	what();
	to_.end_object();
}

void schema_t::list_of(const part_t &items, bool may_lack)
{
	type("array", may_lack);
	property("items", items);
}

void schema_t::described_text(const char *what, bool may_lack)
{
	type("string", may_lack);
	pair("description", what);
}

void schema_t::fields(fields_t of)
{
	std::vector<std::string_view> keys;
	for (const field_t &field : of) {
		if (field.traits & NEW)
			keys.emplace_back(field.key);
	}
	object(keys, [&] {
		for (const field_t &field : of) {
			if (field.traits & NEW)
				property(field.key, [&] { value(field); });
		}
	});
}

void schema_t::value(const field_t &field)
{
	const bool may_lack = field.traits & MAY_LACK;
	switch (field.shape) {
	case shape_t::FLAG:
		type("boolean", may_lack);
		break;
	case shape_t::NUMBER:
	case shape_t::BYTES:
		type("integer", may_lack);
		break;
	case shape_t::TEXT:
		type("string", may_lack);
		break;
	case shape_t::TEXTS:
		list_of([&] { type("string", false); }, may_lack);
		break;
	case shape_t::OBJECT:
		type("object", may_lack);
		fields(field.inner);
		break;
	case shape_t::OBJECTS:
		list_of(
			[&] {
				type("object", false);
				fields(field.inner);
			},
			may_lack);
		break;
	}
	pair("description", field.what);
}

void schema_t::message()
{
	type("object", false);
	object({"severity", "kind", "code", "text"}, [&] {
		property("severity", [&] {
			texts("enum", {"error", "warning", "note"});
			pair("description", "an error is there exactly when exit_status is 1 or 2");
		});
		property("kind",
		         [&] { described_text("the list that it is about; null: the whole run", true); });
		property("code", [&] {
			texts("enum", code_words());
			pair("description", "why, for programs");
		});
		property("text", [&] { described_text("one sentence, for people", false); });
	});
}

void schema_t::check()
{
	std::vector<std::string_view> words;
	for (const check_t *check : all_checks())
		words.emplace_back(check->word);
	type("object", false);
	object({"check", "question", "verdict", "text", "advice"}, [&] {
		property("check", [&] {
			type("string", false);
			texts("enum", words);
			pair("description", "which, for programs");
		});
		property("question", [&] { described_text("that it answers, for people", false); });
		property("verdict", [&] {
			type("string", false);
			texts("enum", {word_of(verdict_t::FINE), word_of(verdict_t::WARNING),
			               word_of(verdict_t::PROBLEM), word_of(verdict_t::NOT_ASKED)});
			pair("description", "problem: a list fails, is cut or holds what is not so, or "
			                    "something cannot be read; "
			                    "warning: what is told is right, and yet not all; not asked: it "
			                    "runs the controller tool");
		});
		property("text", [&] {
			described_text("what was found, for people; null: nothing; a note where it is fine",
			               true);
		});
		property("advice", [&] { described_text("what to do about it; null: nothing", true); });
	});
}

void schema_t::properties()
{
	property("format", [&] {
		to_.key("const");
		to_.number(2);
	});
	property("generator", [&] {
		type("object", false);
		object({"name", "version"}, [&] {
			property("name", [&] { pair("const", "diskscout"); });
			property("version", [&] { described_text("of the program", false); });
		});
	});
	property("host", [&] {
		type("object", false);
		object({"name", "kernel"}, [&] {
			property("name", [&] { described_text("of the host that was looked at", true); });
			property("kernel", [&] { described_text("release of its kernel", true); });
		});
	});
	property("time", [&] {
		type("string", false);
		pair("format", "date-time");
		pair("description", "when it was looked at, UTC");
	});
	property("controller", [&] {
		described_text("RAID controller that was named, or the first one that is listed; null: there "
		               "is none",
		               true);
	});
	for (const kind_t *kind : all_kinds()) {
		property(kind->word, [&] {
			list_of(
				[&] {
					type("object", false);
					fields(kind->fields);
				},
				true);
			pair("description", "null when it could not be asked");
		});
	}
	property(TREE_KIND.word, [&] {
		list_of(
			[&] {
				type("object", false);
				fields(TREE_KIND.fields);
			},
			false);
		pair("description", "of diskscout tree alone, from the roots down: each thing once");
	});
	property("checks", [&] {
		list_of([&] { check(); }, false);
		pair("description", "of diskscout doctor alone, in its order");
	});
	property("messages", [&] { list_of([&] { message(); }, false); });
	property("exit_status", [&] {
		to_.key("enum");
		to_.begin_list();
		for (const int status : {STATUS_FINE, STATUS_FAILED, STATUS_USAGE, STATUS_WARNED})
			to_.number(status);
		to_.end_list();
	});
}

std::string schema_t::text()
{
	to_.begin_object();
	pair("$schema", "https://json-schema.org/draft/2020-12/schema");
	pair("title", "diskscout --json, format 2");
	type("object", false);
	object({"format", "generator", "host", "time", "messages", "exit_status"}, [&] { properties(); });
	to_.end_object();
	return std::move(text_ += '\n');
}

std::string document_schema()
{
	return schema_t().text();
}
