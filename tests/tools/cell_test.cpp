// SPDX-License-Identifier: Apache-2.0
// What a table, a program and a sorted list make of a field's value.
#include "cell.h"

#include "fields_of_samples.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::ElementsAre;

std::vector<std::string> shown(const field_t &field, const sample_t &sample)
{
	return cell_of(field, {&sample}, sizes_t::IN_UNITS);
}

std::vector<std::string> shown_in_bytes(const field_t &field, const sample_t &sample)
{
	return cell_of(field, {&sample}, sizes_t::IN_BYTES);
}

std::string raw(const field_t &field, const sample_t &sample)
{
	return raw_cell_of(field, {&sample});
}

sample_t with_number(std::int64_t number)
{
	sample_t sample;
	sample.number = number;
	return sample;
}

sample_t with_large(std::uint64_t number)
{
	sample_t sample;
	sample.large = number;
	return sample;
}

sample_t with_text(const std::string &text)
{
	sample_t sample;
	sample.text = text;
	return sample;
}

sample_t with_texts(const std::vector<std::string> &texts)
{
	sample_t sample;
	sample.texts = texts;
	return sample;
}

sample_t with_members(const std::vector<member_t> &members)
{
	sample_t sample;
	sample.members = members;
	return sample;
}

sample_t with_flag(bool flag)
{
	sample_t sample;
	sample.flag = flag;
	return sample;
}

TEST(Cell, WhatIsAbsentIsADash)
{
	for (const field_t *field : {&FLAG, &NUMBER, &BYTES, &TEXT, &TEXTS, &MEMBERS, &MEMBER}) {
		EXPECT_THAT(shown(*field, {}), ElementsAre("-")) << field->key;
		EXPECT_THAT(shown_in_bytes(*field, {}), ElementsAre("-")) << field->key;
		EXPECT_EQ(raw(*field, {}), "") << field->key;
	}
}

TEST(Cell, WhatIsEmptyIsADash)
{
	EXPECT_THAT(shown(TEXT, with_text("")), ElementsAre("-"));
	EXPECT_THAT(shown(TEXTS, with_texts({})), ElementsAre("-"));
	EXPECT_THAT(shown(TEXTS, with_texts({"", "b"})), ElementsAre("-", "b"));
	EXPECT_THAT(shown(MEMBERS, with_members({})), ElementsAre("-"));
	EXPECT_EQ(raw(TEXT, with_text("")), "");
	EXPECT_EQ(raw(TEXTS, with_texts({})), "");
	EXPECT_EQ(raw(MEMBERS, with_members({})), "");
}

TEST(Cell, FlagsStandOutWhereTheyAreSet)
{
	EXPECT_THAT(shown(FLAG, with_flag(true)), ElementsAre("yes"));
	EXPECT_THAT(shown(FLAG, with_flag(false)), ElementsAre(""));
	EXPECT_EQ(raw(FLAG, with_flag(true)), "1");
	EXPECT_EQ(raw(FLAG, with_flag(false)), "0");
}

TEST(Cell, Numbers)
{
	EXPECT_THAT(shown(NUMBER, with_number(-2048)), ElementsAre("-2048"));
	EXPECT_THAT(shown(NUMBER, with_number(INT64_MIN)), ElementsAre("-9223372036854775808"));
	EXPECT_THAT(shown(NUMBER, with_large(UINT64_MAX)), ElementsAre("18446744073709551615"));
	EXPECT_THAT(shown_in_bytes(NUMBER, with_number(2048)), ElementsAre("2048"));
	EXPECT_EQ(raw(NUMBER, with_number(-2048)), "-2048");
}

TEST(Cell, SizesAreInUnitsOrInBytes)
{
	EXPECT_THAT(shown(BYTES, with_number(0)), ElementsAre("0 B"));
	EXPECT_THAT(shown(BYTES, with_number(2048)), ElementsAre("2.0 KiB"));
	EXPECT_THAT(shown(BYTES, with_number(-2048)), ElementsAre("-2.0 KiB"));
	EXPECT_THAT(shown(BYTES, with_large(UINT64_MAX)), ElementsAre("16.0 EiB"));
	EXPECT_THAT(shown_in_bytes(BYTES, with_number(2048)), ElementsAre("2048"));
	EXPECT_THAT(shown_in_bytes(BYTES, with_number(-2048)), ElementsAre("-2048"));
	EXPECT_EQ(raw(BYTES, with_number(2048)), "2048");
}

TEST(Cell, TextsSteerNoTerminal)
{
	EXPECT_THAT(shown(TEXT, with_text("a\x1b[1m\xff")), ElementsAre("a?[1m?"));
	EXPECT_THAT(shown(TEXTS, with_texts({"a\nb", "c"})), ElementsAre("a?b", "c"));
	EXPECT_THAT(shown(MEMBERS, with_members({{"a\nb", 0}})), ElementsAre("a?b"));
	EXPECT_EQ(raw(TEXT, with_text("a\x1b[1m\xff")), "a\x1b[1m\xff");
}

TEST(Cell, ListsHaveALineEachOrAComma)
{
	EXPECT_THAT(shown(TEXTS, with_texts({"/", "/home"})), ElementsAre("/", "/home"));
	EXPECT_EQ(raw(TEXTS, with_texts({"/", "/home"})), "/,/home");
}

TEST(Cell, ObjectsAreNamedByTheirFirstValue)
{
	const sample_t sample = with_members({{"sda1", 0}, {std::nullopt, 7}, {"sdb1", 1}});
	EXPECT_THAT(shown(MEMBERS, sample), ElementsAre("sda1, 7, sdb1"));
	EXPECT_EQ(raw(MEMBERS, sample), "sda1,7,sdb1");
	EXPECT_THAT(shown(MEMBER, sample), ElementsAre("sda1"));
}

TEST(Cell, AnObjectIsShownByItsOwnCell)
{
	field_t field = MEMBER;
	field.cell = slot_of_member;
	EXPECT_THAT(shown(field, with_members({{"sda1", 3}})), ElementsAre("slot 3"));
	EXPECT_EQ(raw(field, with_members({{"sda1", 3}})), "slot 3");
	// Its cell has nothing to look at.
	EXPECT_THAT(shown(field, {}), ElementsAre("-"));
	EXPECT_EQ(raw(field, {}), "");
}

TEST(Cell, AFieldsOwnCellGoesFirst)
{
	field_t boot = NUMBER;
	boot.cell = [](const row_t &row) { return std::string(sample_of(row).number == 128 ? "yes" : ""); };
	EXPECT_THAT(shown(boot, with_number(128)), ElementsAre("yes"));
	EXPECT_THAT(shown(boot, with_number(0)), ElementsAre(""));
	EXPECT_THAT(shown_in_bytes(boot, with_number(128)), ElementsAre("yes"));
	EXPECT_EQ(raw(boot, with_number(128)), "128");

	field_t steering = TEXT;
	steering.cell = [](const row_t &) { return std::string("a\nb"); };
	EXPECT_THAT(shown(steering, {}), ElementsAre("a?b"));
}

TEST(Cell, BytesAreAskedForAsTheyAre)
{
	field_t about = BYTES;
	about.cell = [](const row_t &) { return std::string("about 2 KiB"); };
	EXPECT_THAT(shown(about, with_number(2047)), ElementsAre("about 2 KiB"));
	EXPECT_THAT(shown_in_bytes(about, with_number(2047)), ElementsAre("2047"));
	EXPECT_EQ(raw(about, with_number(2047)), "2047");
}

// Places of the samples, sorted.
std::vector<std::size_t> sorted(const field_t &field, const std::vector<sample_t> &samples)
{
	std::vector<row_t> rows;
	for (const sample_t &sample : samples)
		rows.push_back({&sample});
	sort_by(field, rows);
	std::vector<std::size_t> places;
	for (const row_t &row : rows)
		places.push_back(static_cast<std::size_t>(&sample_of(row) - samples.data()));
	return places;
}

TEST(Sort, NumbersByTheirValue)
{
	const std::vector<sample_t> samples = {
		with_number(10),        with_number(9),         {},
		with_number(-1),        with_large(UINT64_MAX), with_number(INT64_MIN),
		with_number(INT64_MAX), with_number(0)};
	EXPECT_THAT(sorted(NUMBER, samples), ElementsAre(5, 3, 7, 1, 0, 6, 4, 2));
	EXPECT_THAT(sorted(BYTES, samples), ElementsAre(5, 3, 7, 1, 0, 6, 4, 2));
}

TEST(Sort, NumbersInTextsByTheirValue)
{
	EXPECT_THAT(sorted(TEXT, {with_text("sda10"), with_text("sda2"), with_text("sda"), with_text("sdaa"),
	                          with_text("sda18446744073709551616"), with_text("sdb1")}),
	            ElementsAre(2, 1, 0, 4, 3, 5));
	EXPECT_THAT(sorted(TEXT, {with_text("0:10:2"), with_text("0:2:10"), with_text("0:2:9")}),
	            ElementsAre(2, 1, 0));
	EXPECT_THAT(sorted(TEXT, {with_text("a0b"), with_text("a"), with_text("a00c"), with_text("a1")}),
	            ElementsAre(1, 0, 2, 3));
}

TEST(Sort, TextsByTheirBytes)
{
	EXPECT_THAT(sorted(TEXT, {with_text("\xc3\xa4"), with_text("b"), with_text("B")}),
	            ElementsAre(2, 1, 0));
}

TEST(Sort, EqualOnesKeepTheirOrder)
{
	EXPECT_THAT(
		sorted(TEXT,
	               {with_text("b"), with_text("a"), {}, with_text("b"), with_text(""), with_text("a")}),
		ElementsAre(1, 5, 0, 3, 2, 4));
	EXPECT_THAT(sorted(TEXT, {with_text("a01"), with_text("a1"), with_text("a001")}),
	            ElementsAre(0, 1, 2));
}

TEST(Sort, ManyEqualOnesKeepTheirOrder)
{
	std::vector<sample_t> samples;
	std::vector<std::size_t> places;
	for (std::size_t i = 0; i < 1000; i++)
		samples.push_back(with_flag(i % 2 == 0));
	for (std::size_t i = 0; i < 1000; i++)
		places.push_back(i < 500 ? 2 * i + 1 : 2 * (i - 500));
	EXPECT_EQ(sorted(FLAG, samples), places);
}

TEST(Sort, OtherShapesByWhatProgramsAreTold)
{
	EXPECT_THAT(sorted(FLAG, {with_flag(true), {}, with_flag(false), with_flag(true)}),
	            ElementsAre(2, 0, 3, 1));
	EXPECT_THAT(sorted(TEXTS, {with_texts({"/b"}), with_texts({}), with_texts({"/a", "/c"}),
	                           with_texts({"/a"})}),
	            ElementsAre(3, 2, 0, 1));
	field_t field = MEMBER;
	field.cell = slot_of_member;
	EXPECT_THAT(sorted(field, {with_members({{"a", 10}}), {}, with_members({{"b", 9}})}),
	            ElementsAre(2, 0, 1));
}

TEST(Sort, ALongNumberIsNoProblem)
{
	const std::string zeros(100000, '0');
	EXPECT_THAT(sorted(TEXT, {with_text(zeros + "2"), with_text("1" + zeros), with_text("1")}),
	            ElementsAre(2, 0, 1));
}

} // namespace
