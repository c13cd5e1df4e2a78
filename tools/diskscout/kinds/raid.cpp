// SPDX-License-Identifier: Apache-2.0
// What the kinds of the hardware RAID side share.
#include "raid.h"

#include <algorithm>
#include <fmt/format.h>

// Only the channel has no bound: the fields are added up when they are packed.
static int channel_of(int position)
{
	return position >> 16;
}

static int id_of(int position)
{
	return position >> 8 & 0xff;
}

static int lun_of(int position)
{
	return position & 0xff;
}

bool is_container(int member)
{
	return member >= 24 && member <= 63;
}

std::string address(int position)
{
	if (position == NO_ADDRESS)
		return "-";
	return fmt::format("{:x}:{:02x}:{:x}", channel_of(position), id_of(position), lun_of(position));
}

template <int (*Part)(int position)> static void put_part(const row_t &row, sink_t &to)
{
	to.number(Part(record_of<int>(row)));
}

static int whole_position(int position)
{
	return position;
}

const field_t ADDRESS_FIELDS[4] = {
	{"position", "POSITION", shape_t::NUMBER, OLD | NEW, "channel x 65536 + ID x 256 + LUN",
         put_part<whole_position>},
	{"channel", "CHANNEL", shape_t::NUMBER, OLD | NEW, "channel of the controller", put_part<channel_of>},
	{"id", "ID", shape_t::NUMBER, OLD | NEW, "SCSI ID", put_part<id_of>},
	{"lun", "LUN", shape_t::NUMBER, OLD | NEW, "logical unit", put_part<lun_of>},
};

void put_address(int position, sink_t &to)
{
	if (position == NO_ADDRESS)
		to.absent();
	else
		put_object(ADDRESS_FIELDS, OLD | NEW, {&position}, to);
}

std::string signed_size(long long bytes)
{
	// The magnitude of the lowest number fits only without its sign.
	const auto magnitude = static_cast<std::uint64_t>(bytes);
	return bytes < 0 ? "-" + human_size(0 - magnitude) : human_size(magnitude);
}

std::string size_modulo_4_gib(long long bytes)
{
	return human_size(static_cast<std::uint32_t>(bytes));
}

const char *word_of(int value, coded_words_t words)
{
	const auto *const end = words.first + words.count;
	const auto *const found =
		std::find_if(words.first, end, [&](const coded_word_t &w) { return w.value == value; });
	return found == end ? nullptr : found->word;
}

std::string word_or_number(int value, coded_words_t words)
{
	const char *const word = word_of(value, words);
	return word ? word : std::to_string(value);
}

void put_word(int value, coded_words_t words, sink_t &to)
{
	const char *const word = word_of(value, words);
	put_text(word ? word : "", to);
}

void add_failure(const raid_site_t &site, const std::string &controller, const raid_failure_t &failure,
                 answer_t &answer)
{
	if (!failure.failed)
		return;
	// The first one of the list was not named before there were several.
	if (!site.is_as_before())
		answer.where += fmt::format("{} on {}", answer.failed ? "," : "", controller);
	answer.where += failure.where;
	if (!failure.failure.empty())
		answer.where += ": " + failure.failure;
	answer.failed = true;
	answer.timed_out |= failure.is_timed_out;
}

answer_t begin_answer(raid_site_t &site)
{
	site.names();
	const raid_failure_t &failure = site.failure_to_name();
	answer_t answer;
	answer.failed = failure.failed;
	answer.timed_out = failure.is_timed_out;
	answer.where = failure.where + (failure.failure.empty() ? "" : ": " + failure.failure);
	return answer;
}
