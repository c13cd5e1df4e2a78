// SPDX-License-Identifier: Apache-2.0
// Which fields of a kind are columns.
#include "columns.h"

#include "closest_word.h"
#include "text.h"
#include "usage_error.h"

#include <algorithm>
#include <fmt/format.h>

static bool is_only_old(const field_t &field)
{
	return (field.traits & (OLD | NEW)) == OLD;
}

static std::string words_of(std::string_view heading)
{
	std::string words = in_small_letters(heading);
	std::replace(words.begin(), words.end(), ' ', '_');
	return words;
}

columns_t old_columns_of(const kind_t &kind)
{
	columns_t columns;
	for (const std::string_view key : split(kind.old_columns ? kind.old_columns : kind.columns, ',')) {
		const field_t *found = nullptr;
		// Of two fields that have this key, the younger one knows what is absent.
		for (const field_t &field : kind.fields) {
			if (field.key == key && (!found || is_only_old(*found)))
				found = &field;
		}
		columns.push_back(found);
	}
	return columns;
}

columns_t known_columns_of(const kind_t &kind)
{
	columns_t columns;
	for (const field_t &field : kind.fields) {
		if (!is_only_old(field))
			columns.push_back(&field);
	}
	return columns;
}

const field_t &column_of(const kind_t &kind, std::string_view name)
{
	const columns_t columns = known_columns_of(kind);
	const std::string key = in_small_letters(name);
	std::vector<std::string_view> known;
	for (const field_t *field : columns) {
		if (field->key == key)
			return *field;
		known.emplace_back(field->key);
	}
	// People read headings.
	for (const field_t *field : columns) {
		if (words_of(field->heading) == words_of(key))
			return *field;
	}
	const std::string hint = suggestion(key, known);
	throw usage_error_t(
		fmt::format("{} have no column \"{}\"{}", kind.word, name,
	                    hint.empty() ? fmt::format(", known are {}", fmt::join(known, ", ")) : hint));
}

columns_t spare_columns_of(const kind_t &kind)
{
	columns_t columns;
	for (const std::string_view key : split(kind.spare_columns, ',')) {
		if (!key.empty())
			columns.push_back(&column_of(kind, key));
	}
	return columns;
}

static void add(columns_t &columns, const field_t &column)
{
	if (std::find(columns.begin(), columns.end(), &column) != columns.end())
		throw usage_error_t(fmt::format("column \"{}\" is named twice", column.key));
	columns.push_back(&column);
}

columns_t columns_of(const kind_t &kind, const std::string &named, bool as_before)
{
	const char *const unasked = as_before && kind.old_columns ? kind.old_columns : kind.columns;
	const bool is_more = !named.empty() && named[0] == '+';
	columns_t columns;
	if (named.empty() || is_more) {
		for (const std::string_view key : split(unasked, ','))
			add(columns, column_of(kind, key));
	}
	if (named.empty())
		return columns;
	for (const std::string_view name : split(std::string_view(named).substr(is_more ? 1 : 0), ','))
		add(columns, column_of(kind, name));
	return columns;
}

bool has_column(const kind_t &kind, const std::string &named, std::string_view name)
{
	const columns_t columns = columns_of(kind, named);
	return std::find(columns.begin(), columns.end(), &column_of(kind, name)) != columns.end();
}
