// A JSON document, written as it is put.
#include "json_writer.h"

#include "utf8.h"

#include <fmt/format.h>

void json_writer_t::new_line()
{
	into_ += '\n';
	into_.append(2 * depth_, ' ');
}

void json_writer_t::begin_value()
{
	if (is_keyed_) {
		is_keyed_ = false;
		return;
	}
	if (depth_ == 0)
		return;
	if (!is_first_)
		into_ += ',';
	is_first_ = false;
	new_line();
}

void json_writer_t::value(std::string_view text)
{
	begin_value();
	into_ += text;
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
		new_line();
	into_ += bracket;
	is_first_ = false;
}

void json_writer_t::absent()
{
	value("null");
}

void json_writer_t::flag(bool set)
{
	value(set ? "true" : "false");
}

void json_writer_t::number(std::int64_t number)
{
	const fmt::format_int digits(number);
	value({digits.data(), digits.size()});
}

void json_writer_t::large(std::uint64_t number)
{
	const fmt::format_int digits(number);
	value({digits.data(), digits.size()});
}

void json_writer_t::text(std::string_view text)
{
	begin_value();
	quote(text);
}

void json_writer_t::key(std::string_view name)
{
	begin_value();
	quote(name);
	into_ += ": ";
	is_keyed_ = true;
}

static bool stands_for_itself(char byte)
{
	const auto value = static_cast<unsigned char>(byte);
	return value >= 0x20 && value < 0x80 && byte != '"' && byte != '\\';
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

void json_writer_t::quote(std::string_view text)
{
	static constexpr std::string_view REPLACEMENT = "\xef\xbf\xbd";
	into_ += '"';
	while (!text.empty()) {
		std::size_t plain = 0;
		while (plain < text.size() && stands_for_itself(text[plain]))
			plain++;
		into_ += text.substr(0, plain);
		text.remove_prefix(plain);
		if (text.empty())
			break;
		const utf8_front_t front = utf8_front(text);
		if (!front.is_character)
			into_ += REPLACEMENT;
		else if (front.length == 1)
			into_ += escaped(text[0]);
		else
			into_ += text.substr(0, front.length);
		text.remove_prefix(front.length);
	}
	into_ += '"';
}
