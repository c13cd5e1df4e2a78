// SPDX-License-Identifier: Apache-2.0
// A field's value in a table.
#include "cell.h"

#include "text.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

// What is below the value of every unsigned number, and the value of one that is.
using number_t = std::pair<std::int64_t, std::uint64_t>;

// The values that a field put, objects as the first value that each has.
class values_t : public sink_t
{
public:
	values_t(const field_t &field, const row_t &row, const char *yes, const char *no, bool in_units)
	    : yes_(yes), no_(no), in_units_(in_units)
	{
		field.put(row, *this);
	}

	bool is_absent() const { return texts.empty(); }

	std::vector<std::string> texts;
	number_t as_number = {0, 0};

	void absent() override {}
	void flag(bool value) override
	{
		as_number = {0, value};
		add(value ? yes_ : no_);
	}
	void number(std::int64_t value) override
	{
		if (value >= 0) {
			large(static_cast<std::uint64_t>(value));
			return;
		}
		as_number = {value, 0};
		add("-" + digits(0 - static_cast<std::uint64_t>(value)));
	}
	void large(std::uint64_t value) override
	{
		as_number = {0, value};
		add(digits(value));
	}
	void text(std::string_view value) override { add(std::string(value)); }
	void begin_list() override {}
	void end_list() override {}
	void begin_object() override
	{
		if (depth_++ == 0)
			is_named_ = false;
	}
	void key(std::string_view) override {}
	void end_object() override { depth_--; }

private:
	std::string digits(std::uint64_t value) const
	{
		return in_units_ ? human_size(value) : fmt::to_string(value);
	}
	void add(std::string text)
	{
		if (depth_ > 0 && std::exchange(is_named_, true))
			return;
		texts.push_back(std::move(text));
	}

	const char *const yes_;
	const char *const no_;
	const bool in_units_;
	unsigned depth_ = 0;
	bool is_named_ = false; // the object that is open
};

static bool is_of_objects(const field_t &field)
{
	return field.shape == shape_t::OBJECT || field.shape == shape_t::OBJECTS;
}

static std::string joined(const std::vector<std::string> &texts, std::string_view comma)
{
	return fmt::to_string(fmt::join(texts, comma));
}

static std::string dash_if_empty(std::string_view text)
{
	return text.empty() ? "-" : printable(text);
}

std::vector<std::string> cell_of(const field_t &field, const row_t &row, sizes_t sizes)
{
	const bool is_plain_size = field.shape == shape_t::BYTES && sizes == sizes_t::IN_BYTES;
	if (field.cell && field.shape != shape_t::OBJECT && !is_plain_size)
		return {printable(field.cell(row))};
	const bool in_units = field.shape == shape_t::BYTES && sizes == sizes_t::IN_UNITS;
	const values_t values(field, row, "yes", "", in_units);
	if (values.is_absent())
		return {"-"};
	if (field.cell && field.shape == shape_t::OBJECT)
		return {printable(field.cell(row))};
	if (field.shape == shape_t::FLAG)
		return values.texts;
	if (field.shape != shape_t::TEXTS)
		return {dash_if_empty(joined(values.texts, ", "))};
	std::vector<std::string> lines;
	for (const std::string &text : values.texts)
		lines.push_back(dash_if_empty(text));
	return lines;
}

std::string raw_cell_of(const field_t &field, const row_t &row)
{
	const values_t values(field, row, "1", "0", false);
	if (field.cell && is_of_objects(field) && !values.is_absent())
		return field.cell(row);
	return joined(values.texts, ",");
}

namespace
{
struct sorted_row_t {
	bool is_last;
	number_t number;
	std::string text;
	row_t row;
};
} // namespace

static sorted_row_t with_key(const field_t &field, const row_t &row)
{
	const bool is_number = field.shape == shape_t::NUMBER || field.shape == shape_t::BYTES;
	if (is_number) {
		const values_t values(field, row, "", "", false);
		return {values.is_absent(), values.as_number, "", row};
	}
	std::string text = raw_cell_of(field, row);
	const bool is_last = text.empty();
	return {is_last, {0, 0}, std::move(text), row};
}

static bool is_before(const sorted_row_t &one, const sorted_row_t &other)
{
	if (one.is_last != other.is_last)
		return other.is_last;
	if (one.number != other.number)
		return one.number < other.number;
	return is_before_by_value(one.text, other.text);
}

void sort_by(const field_t &field, std::vector<row_t> &rows)
{
	std::vector<sorted_row_t> keyed;
	keyed.reserve(rows.size());
	for (const row_t &row : rows)
		keyed.push_back(with_key(field, row));
	std::stable_sort(keyed.begin(), keyed.end(),
	                 [](const auto &one, const auto &other) { return is_before(one, other); });
	std::transform(keyed.begin(), keyed.end(), rows.begin(), [](const sorted_row_t &k) { return k.row; });
}
