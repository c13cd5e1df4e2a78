// SPDX-License-Identifier: Apache-2.0
#include "vpd.h"

static unsigned byte_at(text_t page, size_t at)
{
	return at < page.size() ? static_cast<unsigned char>(page[at]) : 0;
}

// What follows the page's head; empty for another page.
static text_t page_body(text_t page, unsigned code)
{
	constexpr size_t HEAD = 4;
	if (page.size() < HEAD || byte_at(page, 1) != code)
		return {};
	return page.substr(HEAD, byte_at(page, 2) << 8 | byte_at(page, 3));
}

text_t vpd_serial(text_t page)
{
	return trimmed(page_body(page, 0x80));
}

enum { OF_THE_UNIT = 0 };
enum { EUI64_NAME = 2, NAA_NAME = 3 };

vpd_names_t vpd_names(Arena *arena, text_t page)
{
	constexpr size_t HEAD = 4;
	vpd_names_t names = {};
	text_t naa;
	text_t eui;

	for (text_t rest = page_body(page, 0x83); rest.size() > HEAD;) {
		const unsigned association = byte_at(rest, 1) >> 4 & 3;
		const unsigned type = byte_at(rest, 1) & 15;
		const size_t length = byte_at(rest, 3);
		const text_t name = rest.substr(HEAD, length);
		if (name.size() < length)
			break;
		if (association == OF_THE_UNIT && type == NAA_NAME && (length == 8 || length == 16) &&
		    length > naa.size())
			naa = name;
		if (association == OF_THE_UNIT && type == EUI64_NAME &&
		    (length == 8 || length == 12 || length == 16) && eui.empty())
			eui = name;
		rest = rest.substr(HEAD + length);
	}
	const auto bytes = [](text_t name) { return reinterpret_cast<const unsigned char *>(name.data()); };
	if (!naa.empty())
		names.wwn = hex_text(arena, "0x", bytes(naa), naa.size());
	if (!eui.empty())
		names.eui64 = hex_text(arena, "", bytes(eui), eui.size());
	return names;
}

// Two characters a word, the first one in its high byte: as they lie there they stand the wrong way round.
static const char *ata_text(Arena *arena, text_t identify, size_t word, size_t words)
{
	char text[40] = {};
	for (size_t i = 0; i < words; i++) {
		text[2 * i] = static_cast<char>(byte_at(identify, 2 * (word + i) + 1));
		text[2 * i + 1] = static_cast<char>(byte_at(identify, 2 * (word + i)));
	}
	return shown_text(arena, trimmed(std::string_view(text, 2 * words)));
}

ata_identity_t vpd_ata_identity(Arena *arena, text_t page)
{
	constexpr size_t IDENTIFY_AT = 56; // in the body
	constexpr size_t IDENTIFY_BYTES = 512;
	ata_identity_t identity = {};

	const text_t identify = page_body(page, 0x89).substr(IDENTIFY_AT);
	if (identify.size() < IDENTIFY_BYTES)
		return identity;
	identity.serial = ata_text(arena, identify, 10, 10);
	identity.firmware = ata_text(arena, identify, 23, 4);
	identity.model = ata_text(arena, identify, 27, 20);
	return identity;
}
