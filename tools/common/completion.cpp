// SPDX-License-Identifier: Apache-2.0
// What can stand in the place of a word that is being typed.
#include "completion.h"

#include "text.h"

#include <algorithm>
#include <charconv>
#include <utility>

static bool begins_with(std::string_view word, std::string_view beginning)
{
	return word.substr(0, beginning.size()) == beginning;
}

// The number in "--at=3"; 0: it is another word.
static std::size_t place_told(std::string_view word)
{
	static constexpr std::string_view AT = "--at=";
	if (!begins_with(word, AT))
		return 0;
	const std::string_view digits = word.substr(AT.size());
	std::size_t place = 0;
	const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), place);
	return error == std::errc() && end == digits.data() + digits.size() ? place : 0;
}

typed_words_t typed_words(std::vector<std::string> words)
{
	std::size_t place = words.empty() ? 0 : place_told(words.front());
	if (place > 0)
		words.erase(words.begin());
	else
		place = words.size();
	if (words.empty() || place > words.size()) {
		words.emplace_back();
		place = words.size();
	}
	return {std::move(words), place - 1};
}

// ---- the line ----

static bool is_named(const known_option_t &option, std::string_view name)
{
	return std::find(option.names.begin(), option.names.end(), name) != option.names.end();
}

bool typed_line_t::is_given(std::string_view name) const
{
	return std::any_of(given.begin(), given.end(),
	                   [&](const auto &row) { return is_named(*row.first, name); });
}

std::string typed_line_t::value_of(std::string_view name) const
{
	const auto row = std::find_if(given.begin(), given.end(),
	                              [&](const auto &one) { return is_named(*one.first, name); });
	return row == given.end() ? "" : row->second;
}

namespace
{

class line_reader_t
{
public:
	line_reader_t(const known_options_t &known, options_end_t end) : known_(known), end_(end) {}

	void take(const std::string &word)
	{
		if (awaiting_)
			line_.given[std::exchange(awaiting_, nullptr)] = word;
		else if (!have_ended_ && word == "--")
			have_ended_ = true;
		else if (!have_ended_ && is_option(word))
			take_option(word);
		else
			take_operand(word);
	}

	void take_typed(const std::string &word)
	{
		line_.word = word;
		line_.option = std::exchange(awaiting_, nullptr);
		line_.may_be_option = !have_ended_;
		line_.operands_before = line_.operands.size();
		if (!line_.option && !have_ended_ && is_option(word))
			take_typed_option(word);
	}

	typed_line_t line() { return std::move(line_); }

private:
	static bool is_option(std::string_view word) { return word.size() > 1 && word.front() == '-'; }

	// Of "--sort=size" and of "-osize" what stands before the value: "--sort=", "-o".
	static std::string_view without_value(std::string_view word)
	{
		if (!begins_with(word, "--"))
			return word.substr(0, 2);
		const std::size_t sign = word.find('=');
		return sign == std::string_view::npos ? word : word.substr(0, sign + 1);
	}

	const known_option_t *option_named(std::string_view name) const
	{
		if (name.back() == '=')
			name.remove_suffix(1);
		for (const known_option_t &option : known_) {
			if (is_named(option, name))
				return &option;
		}
		return nullptr;
	}

	void take_option(std::string_view word)
	{
		const std::string_view name = without_value(word);
		const known_option_t *const option = option_named(name);
		if (!option)
			line_.is_understood = false;
		else if (!option->value.empty() && name.back() != '=' && name.size() == word.size())
			awaiting_ = option;
		else
			line_.given[option] = word.substr(name.size());
	}

	void take_typed_option(std::string_view word)
	{
		const std::string_view name = without_value(word);
		if (name.back() != '=' && name.size() == word.size())
			return;
		line_.option = option_named(name);
		line_.before = name;
		line_.word = word.substr(name.size());
		line_.is_understood &= line_.option && !line_.option->value.empty();
	}

	void take_operand(const std::string &word)
	{
		line_.operands.push_back(word);
		have_ended_ |= end_ == options_end_t::AT_OPERAND;
	}

	const known_options_t &known_;
	options_end_t end_;
	const known_option_t *awaiting_ = nullptr; // its value
	bool have_ended_ = false;                  // options
	typed_line_t line_;
};

} // namespace

typed_line_t read_line(const typed_words_t &typed, const known_options_t &known, options_end_t end)
{
	line_reader_t reader(known, end);
	for (std::size_t i = 0; i < typed.words.size(); i++) {
		if (i == typed.at)
			reader.take_typed(typed.words[i]);
		else
			reader.take(typed.words[i]);
	}
	return reader.line();
}

// ---- what can stand there ----

completion_t options_left(const known_options_t &known, const typed_line_t &line)
{
	completion_t left;
	for (const known_option_t &option : known) {
		if (line.is_given(option.names.front()))
			continue;
		for (std::size_t i = 0; i < option.shown; i++)
			left.words.push_back({option.names[i], option.what});
	}
	return left;
}

completion_t value_of(const known_option_t &option)
{
	if (option.value == "PATH" || option.value == "FILE")
		return {completion_t::FILES};
	if (option.value == "DIR")
		return {completion_t::DIRECTORIES};
	completion_t values;
	if (option.value.find('|') != std::string::npos) {
		for (const std::string_view value : split(option.value, '|'))
			values.words.push_back({std::string(value), ""});
	}
	return values;
}

std::string told(const completion_t &completion, const typed_line_t &line)
{
	static constexpr std::string_view PLACES[] = {":words", ":list", ":files", ":directories"};
	std::string text(PLACES[completion.place]);
	text += '\n';
	for (const candidate_t &candidate : completion.words) {
		if (begins_with(candidate.word, line.word))
			text.append(line.before).append(candidate.word).append("\t").append(candidate.what) +=
				'\n';
	}
	return text;
}
