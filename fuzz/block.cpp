// SPDX-License-Identifier: Apache-2.0
// The readers of today's hosts.
#include "block.h"
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "udev.h"
#include "vpd.h"

#include <ctype.h>
#include <string_view>

namespace
{

// How many bytes the character that begins here has, 0 for none that a text may hold. Written after the
// table of well-formed sequences in the Unicode standard, to be unlike the library's own way.
size_t character_length(std::string_view text)
{
	const auto byte = [text](size_t at) {
		return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
	};
	const auto within = [byte](size_t at, unsigned least, unsigned most) {
		return byte(at) >= least && byte(at) <= most;
	};
	static constexpr struct {
		unsigned first, last; // bytes that begin it
		unsigned least, most; // the second byte
		size_t length;
	} ROWS[] = {
		{0xc2, 0xc2, 0xa0, 0xbf, 2}, // C2 80 to C2 9F are control characters
		{0xc3, 0xdf, 0x80, 0xbf, 2}, {0xe0, 0xe0, 0xa0, 0xbf, 3}, {0xe1, 0xec, 0x80, 0xbf, 3},
		{0xed, 0xed, 0x80, 0x9f, 3}, {0xee, 0xef, 0x80, 0xbf, 3}, {0xf0, 0xf0, 0x90, 0xbf, 4},
		{0xf1, 0xf3, 0x80, 0xbf, 4}, {0xf4, 0xf4, 0x80, 0x8f, 4},
	};
	if (within(0, 0x20, 0x7e))
		return 1;
	for (const auto &row : ROWS) {
		if (!within(0, row.first, row.last) || !within(1, row.least, row.most))
			continue;
		for (size_t at = 2; at < row.length; at++)
			if (!within(at, 0x80, 0xbf))
				return 0;
		return row.length;
	}
	return 0;
}

bool is_small_hex(char c)
{
	return isdigit(static_cast<unsigned char>(c)) != 0 || (c >= 'a' && c <= 'f');
}

bool is_escape(std::string_view text)
{
	return text.size() >= 4 && text[1] == 'x' && is_small_hex(text[2]) && is_small_hex(text[3]);
}

// Null, or that many digits behind the prefix, for one of the lengths.
bool is_name(const char *name, std::string_view prefix, std::initializer_list<size_t> lengths)
{
	if (!name)
		return true;
	const std::string_view text = name;
	if (text.substr(0, prefix.size()) != prefix)
		return false;
	const std::string_view digits = text.substr(prefix.size());
	return std::all_of(digits.begin(), digits.end(), is_small_hex) &&
	       std::find(lengths.begin(), lengths.end(), digits.size()) != lengths.end();
}

// A field of fixed width: no more characters than it has bytes, each of which may have become four.
bool is_field(const char *text, size_t width)
{
	return !text || (is_shown(text) && strlen(text) <= 4 * width);
}

} // namespace

bool is_shown(const char *text)
{
	if (!text)
		return true;
	std::string_view rest = text;
	if (rest.empty())
		return false;
	while (!rest.empty()) {
		const size_t length = rest[0] != '\\' ? character_length(rest) : is_escape(rest) ? 4 : 0;
		if (length == 0)
			return false;
		rest.remove_prefix(length);
	}
	return true;
}

std::string check_vpd(const char *path)
{
	const std::string content = content_of(path);
	const text_t page{std::string_view(content)};
	Arena arena;
	const text_t serial = vpd_serial(page);
	const vpd_names_t names = vpd_names(&arena, page);
	const ata_identity_t ata = vpd_ata_identity(&arena, page);
	return broken({
		{serial.empty() || (serial.data() >= page.data() &&
	                            serial.data() + serial.size() <= page.data() + page.size()),
	         "a serial number that does not stand in the page"},
		{is_shown(shown_text(&arena, serial)), "serial number"},
		{is_name(names.wwn, "0x", {16, 32}), "wwn"},
		{is_name(names.eui64, "", {16, 24, 32}), "eui64"},
		{is_field(ata.model, 40) && is_field(ata.serial, 20) && is_field(ata.firmware, 8),
	         "identity"},
	});
}

// A link of the record: a name that stands in one of its lines.
static bool is_link_of(text_t link, std::string_view content)
{
	const std::string line = "S:" + std::string(link);
	const size_t at = ("\n" + std::string(content) + "\n").find("\n" + line + "\n");
	return !link.empty() && link.find('\n') == text_t::npos && at != std::string::npos;
}

// For each key of the input: the value is what stands behind its first sign, and fit to be shown.
static std::string check_values(const UdevRecord &record, std::string_view content)
{
	for (std::string_view rest = content; !rest.empty();) {
		const size_t end = std::min(rest.find('\n'), rest.size());
		const std::string_view line = rest.substr(0, end);
		rest.remove_prefix(std::min(end + 1, rest.size()));
		const size_t sign = line.find('=');
		if (line.substr(0, 2) != "E:" || sign == std::string_view::npos)
			continue;
		Arena arena;
		const text_t key = line.substr(2, sign - 2);
		const text_t value = record.value(key);
		const std::string whole = "E:" + std::string(key) + "=" + std::string(value) + "\n";
		const bool stands =
			("\n" + std::string(content) + "\n").find("\n" + whole) != std::string::npos;
		if (!stands || !is_shown(record.decoded(&arena, key)))
			return "value of " + std::string(key);
	}
	return "";
}

std::string check_udev(const char *path)
{
	static const Host host("udev");
	const std::string content = content_of(path);
	host.file("run/udev/data/b8:1", content);
	const Visit visit(host);
	Arena arena;
	const UdevDatabase database;
	const UdevRecord record(&arena, database, 8, 1);
	if (!record.is_there())
		return content.empty() || content.size() > (size_t{64} << 10) ? "" : "a record is not read";
	text_t rest = record.links();
	for (text_t link = UdevRecord::next_link(&rest); !link.empty(); link = UdevRecord::next_link(&rest))
		if (!is_link_of(link, content))
			return "a link that the record has not";
	return check_values(record, content);
}
