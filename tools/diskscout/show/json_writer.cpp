// SPDX-License-Identifier: Apache-2.0
// A JSON document, written as it is put.
#include "json_writer.h"

#include "utf8.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

// A document is hundreds of thousands of short pieces: what goes together is appended together.
void json_writer_t::new_line(bool is_behind_another)
{
	static constexpr std::string_view PIECE = ",\n                ";
	const std::size_t blanks = 2 * depth_;
	const std::size_t at_once = std::min(blanks, PIECE.size() - 2);
	into_ += PIECE.substr(is_behind_another ? 0 : 1, at_once + (is_behind_another ? 2 : 1));
	into_.append(blanks - at_once, ' ');
}

void json_writer_t::begin_value()
{
	if (is_keyed_) {
		is_keyed_ = false;
		return;
	}
	if (depth_ == 0)
		return;
	new_line(!is_first_);
	is_first_ = false;
}

void json_writer_t::put(std::string_view word)
{
	begin_value();
	into_ += word;
}

void json_writer_t::open(char bracket)
{
	begin_value();
	into_ += bracket;
	depth_++;
	is_first_ = true;
}

void json_writer_t::close(char bracket)
{
	depth_--;
	if (!is_first_)
		new_line(false);
	into_ += bracket;
	is_first_ = false;
}

void json_writer_t::absent()
{
	put("null");
}

void json_writer_t::flag(bool value)
{
	put(value ? "true" : "false");
}

void json_writer_t::number(std::int64_t value)
{
	const fmt::format_int digits(value);
	put({digits.data(), digits.size()});
}

void json_writer_t::large(std::uint64_t value)
{
	const fmt::format_int digits(value);
	put({digits.data(), digits.size()});
}

void json_writer_t::text(std::string_view value)
{
	begin_value();
	quote(value);
}

void json_writer_t::key(std::string_view name)
{
	begin_value();
	into_ += '"';
	into_ += name;
	into_ += "\": ";
	is_keyed_ = true;
}

// A byte that needs no second look: neither escaped nor part of a longer character.
static constexpr std::array<bool, 256> plain_bytes()
{
	std::array<bool, 256> is_plain = {};
	for (std::size_t byte = 0x20; byte < 0x80; byte++)
		is_plain[byte] = byte != '"' && byte != '\\';
	return is_plain;
}

static constexpr std::array<bool, 256> IS_PLAIN = plain_bytes();

// Whether all of the text is plain. Looking at each byte costs less than asking after each whether to go on.
static bool is_plain(std::string_view text)
{
	bool is_all = true;
	for (const char byte : text)
		is_all &= IS_PLAIN[static_cast<unsigned char>(byte)];
	return is_all;
}

static std::string escaped(char byte)
{
	static constexpr std::string_view SHORT[] = {"\"\"", "\\\\", "\bb", "\ff", "\nn", "\rr", "\tt"};
	for (const std::string_view row : SHORT) {
		if (byte == row[0])
			return {'\\', row[1]};
	}
	return fmt::format("\\u{:04x}", static_cast<unsigned char>(byte));
}

static std::string with_escapes(std::string_view text)
{
	static constexpr std::string_view REPLACEMENT = "\xef\xbf\xbd";
	std::string result;
	while (!text.empty()) {
		const utf8_front_t front = utf8_front(text);
		if (!front.is_character)
			result += REPLACEMENT;
		else if (front.length > 1 || is_plain(text.substr(0, 1)))
			result += text.substr(0, front.length);
		else
			result += escaped(text[0]);
		text.remove_prefix(front.length);
	}
	return result;
}

void json_writer_t::quote(std::string_view text)
{
	into_ += '"';
	if (is_plain(text))
		into_ += text;
	else
		into_ += with_escapes(text);
	into_ += '"';
}
