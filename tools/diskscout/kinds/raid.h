// SPDX-License-Identifier: Apache-2.0
// What the kinds of the hardware RAID side share: disk addresses, coded fields, sizes that may be negative.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_RAID_H
#define DISKSCOUT_TOOLS_DISKSCOUT_RAID_H

#include "classic_fields.h"
#include "kinds.h"
#include "raid_site.h"

#include <string>

// A value of a coded field and its word.
struct coded_word_t {
	int value;
	const char *word;
};

// The words of a coded field.
struct coded_words_t {
	const coded_word_t *first;
	std::size_t count;

	template <std::size_t Size>
	constexpr coded_words_t(const coded_word_t (&words)[Size]) : first(words), count(Size)
	{
	}
};

// Null when the value has none.
const char *word_of(int value, coded_words_t words);

// The word for a table cell; a value that has none is shown as the number that it is.
std::string word_or_number(int value, coded_words_t words);

void put_word(int value, coded_words_t words, sink_t &to);

// The word beside the number of a coded field, which is told in any case.
template <auto Member, const auto &Words> void word_member(const row_t &row, sink_t &to)
{
	put_word(value_of<Member>(row), Words, to);
}

template <auto Member, const auto &Words> std::string word_cell(const row_t &row)
{
	return word_or_number(value_of<Member>(row), Words);
}

template <auto Member, const auto &Words>
constexpr field_t word(const char *key, const char *heading, const char *what, unsigned formats = OLD | NEW)
{
	return {key,
	        heading,
	        shape_t::TEXT,
	        formats | MAY_LACK,
	        what,
	        word_member<Member, Words>,
	        {},
	        word_cell<Member, Words>};
}

// Types of containers, which two kinds of records hold.
inline constexpr coded_word_t CONTAINER_TYPES[] = {
	{KESTREL_HWRAID_TYPE_UNKNOWN, "unknown"},      {KESTREL_HWRAID_TYPE_RAID0, "RAID 0"},
	{KESTREL_HWRAID_TYPE_RAID1, "RAID 1"},         {KESTREL_HWRAID_TYPE_RAID5, "RAID 5"},
	{KESTREL_HWRAID_TYPE_RAID10, "RAID 10"},       {KESTREL_HWRAID_TYPE_VOLUME, "volume"},
	{KESTREL_HWRAID_TYPE_RECONF, "reconfiguring"},
};

// The value of an address field that names no disk.
enum { NO_ADDRESS = -1 };

// A container made of containers holds their numbers, 24 to 63, in place of disk addresses. No address is
// there: a LUN has one hexadecimal digit.
bool is_container(int member);

// A disk's address as the controller tool prints it in its container list: hexadecimal, the SCSI ID with two
// digits, "0:0a:0". "-" for none.
std::string address(int position);

// The number and its parts; absent for none.
void put_address(int position, sink_t &to);
extern const field_t ADDRESS_FIELDS[4];

template <auto Member> void address_member(const row_t &row, sink_t &to)
{
	put_address(value_of<Member>(row), to);
}

template <auto Member> std::string address_cell(const row_t &row)
{
	return address(value_of<Member>(row));
}

template <auto Member>
constexpr field_t address_field(const char *key, const char *heading, const char *what,
                                unsigned formats = OLD | NEW)
{
	return {key,
	        heading,
	        shape_t::OBJECT,
	        formats | MAY_LACK,
	        what,
	        address_member<Member>,
	        ADDRESS_FIELDS,
	        address_cell<Member>};
}

// A size or an offset of a signed field. A negative one is an error of the tool's output, and looks like it.
std::string signed_size(long long bytes);

template <auto Member> std::string signed_size_cell(const row_t &row)
{
	return signed_size(value_of<Member>(row));
}

// What is certain of a size that has only its low 32 bits right: the size without all whole multiples of
// 4 GiB.
std::string size_modulo_4_gib(long long bytes);

template <auto Member> void low32_member(const row_t &row, sink_t &to)
{
	to.large(static_cast<std::uint32_t>(value_of<Member>(row)));
}

template <auto Member> std::string modulo_cell(const row_t &row)
{
	return size_modulo_4_gib(value_of<Member>(row));
}

template <auto Member> constexpr field_t low32(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::BYTES, NEW, what, low32_member<Member>, {}, modulo_cell<Member>};
}

// The true value of what the record holds only a part of.
template <auto Member> void told_member(const row_t &row, sink_t &to)
{
	const long long value = value_of<Member>(row);
	if (value == NOT_TOLD)
		to.absent();
	else
		to.number(value);
}

template <auto Member> constexpr field_t told(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::BYTES, NEW | MAY_LACK, what, told_member<Member>};
}

// A count or number of which -1 says that there is none.
template <auto Member> void counted_member(const row_t &row, sink_t &to)
{
	const long long value = value_of<Member>(row);
	if (value < 0)
		to.absent();
	else
		to.number(value);
}

template <auto Member> constexpr field_t counted(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::NUMBER, NEW | MAY_LACK, what, counted_member<Member>};
}

// ---- all controllers ----

template <typename Row> void put_controller(const row_t &row, sink_t &to)
{
	to.text(record_of<Row>(row).controller);
}

template <typename Row> constexpr field_t controller_field()
{
	return {"controller",       "CONTROLLER", shape_t::TEXT, NEW, "name of its controller",
	        put_controller<Row>};
}

// That the list of this controller is not whole.
void add_failure(const raid_site_t &site, const std::string &controller, const raid_failure_t &failure,
                 answer_t &answer);

// The failure to name the controllers, if it is one.
answer_t begin_answer(raid_site_t &site);

template <typename Row> using raid_question_t = const raid_list_t<Row> &(raid_site_t::*)(const std::string &);

// The rows of all controllers. One that fails does not hide the others.
template <typename Row, raid_question_t<Row> Question> answer_t ask_controllers(enquiry_t &from)
{
	raid_site_t &site = from.raid();
	answer_t answer = begin_answer(site);
	for (const std::string &name : site.names()) {
		const raid_list_t<Row> &list = (site.*Question)(name);
		add_failure(site, name, list, answer);
		for (const Row &row : list.rows)
			answer.rows.push_back({&row, &from});
	}
	return answer;
}

#endif
