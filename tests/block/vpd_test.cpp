// SPDX-License-Identifier: Apache-2.0
// Pages of vital product data: what names a unit, and what they may say that is not so.
#include "vpd.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace std::string_literals;

std::string page(unsigned char code, const std::string &content)
{
	return "\0"s + static_cast<char>(code) + static_cast<char>(content.size() >> 8) +
	       static_cast<char>(content.size() & 0xff) + content;
}

enum association_t { UNIT, PORT, TARGET };
enum name_t { VENDOR, T10, EUI, NAA, PORT_NUMBER, NAME_STRING = 8 };

std::string designator(association_t of, name_t type, const std::string &name)
{
	const char code_set = type == T10 || type == VENDOR ? 2 : 1;
	return ""s + code_set + static_cast<char>(of << 4 | type) + '\0' + static_cast<char>(name.size()) +
	       name;
}

const std::string NAA_5 = "\x50\x00\xc5\x00\xa1\xb2\xc3\xd4"s;
const std::string NAA_3 = "\x30\x00\x00\x00\x00\x00\x00\x01"s;
const std::string NAA_6 = "\x60\x0c\x0f\xfe\xe0\x00\x00\x00\x00\x00\x00\x00\x00\x00\xab\xcd"s;
const std::string EUI_8 = "\x01\x23\x45\x67\x89\xab\xcd\xef"s;

std::string wwn_of(const std::string &bytes)
{
	Arena arena;
	const char *wwn = vpd_names(&arena, std::string_view(bytes)).wwn;
	return wwn ? wwn : "";
}

std::string eui_of(const std::string &bytes)
{
	Arena arena;
	const char *eui = vpd_names(&arena, std::string_view(bytes)).eui64;
	return eui ? eui : "";
}

std::string serial_of(const std::string &bytes)
{
	return std::string(vpd_serial(std::string_view(bytes)));
}

TEST(SerialPage, BlanksAroundTheNumberAreCut)
{
	EXPECT_EQ(serial_of(page(0x80, "  AB 12  ")), "AB 12");
	EXPECT_EQ(serial_of(page(0x80, "AB12\0\0\0"s)), "AB12");
	EXPECT_EQ(serial_of(page(0x80, "        ")), "");
	EXPECT_EQ(serial_of(page(0x80, "")), "");
}

TEST(SerialPage, IsNoOtherPage)
{
	EXPECT_EQ(serial_of(page(0x83, "AB12")), "");
	EXPECT_EQ(serial_of(page(0x00, "AB12")), "");
}

TEST(SerialPage, EndsWhereItSaysAndWhereTheBytesEnd)
{
	EXPECT_EQ(serial_of(page(0x80, "AB12") + "after it"), "AB12");
	EXPECT_EQ(serial_of("\0\x80\xff\xff"s + "AB12"), "AB12");
	for (size_t cut = 0; cut < 4; cut++)
		EXPECT_EQ(serial_of(page(0x80, "AB12").substr(0, cut)), "") << cut;
}

TEST(NamesPage, TheLongestNaaOfTheUnitIsItsName)
{
	EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, NAA, NAA_5))), "0x5000c500a1b2c3d4");
	EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, NAA, NAA_6))), "0x600c0ffee0000000000000000000abcd");
	EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, NAA, NAA_3) + designator(UNIT, NAA, NAA_6))),
	          "0x600c0ffee0000000000000000000abcd");
	EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, NAA, NAA_6) + designator(UNIT, NAA, NAA_5))),
	          "0x600c0ffee0000000000000000000abcd");
}

TEST(NamesPage, PortsAndTargetsHaveNamesOfTheirOwn)
{
	const std::string others =
		designator(PORT, NAA, NAA_6) + designator(TARGET, NAA, NAA_6) + designator(PORT, EUI, EUI_8) +
		designator(TARGET, NAME_STRING, "naa.5000") + designator(PORT, PORT_NUMBER, "\0\0\0\1"s);
	EXPECT_EQ(wwn_of(page(0x83, others)), "");
	EXPECT_EQ(eui_of(page(0x83, others)), "");
	EXPECT_EQ(wwn_of(page(0x83, others + designator(UNIT, NAA, NAA_5))), "0x5000c500a1b2c3d4");
}

// A transport's own protocol identifier stands in the high nibble of the first byte, "valid" in the second.
TEST(NamesPage, ProtocolBitsAreNoPartOfTheKind)
{
	std::string name = designator(UNIT, NAA, NAA_5);
	name[0] = '\x61';
	name[1] = static_cast<char>(name[1] | '\x80');
	EXPECT_EQ(wwn_of(page(0x83, name)), "0x5000c500a1b2c3d4");
}

TEST(NamesPage, TellsEuiOfThreeLengths)
{
	EXPECT_EQ(eui_of(page(0x83, designator(UNIT, EUI, EUI_8))), "0123456789abcdef");
	EXPECT_EQ(eui_of(page(0x83, designator(UNIT, EUI, EUI_8 + "\1\2\3\4"s))), "0123456789abcdef01020304");
	EXPECT_EQ(eui_of(page(0x83, designator(UNIT, EUI, EUI_8 + EUI_8))),
	          "0123456789abcdef0123456789abcdef");
	EXPECT_EQ(eui_of(page(0x83, designator(UNIT, EUI, EUI_8 + "\1"))), "");
	EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, EUI, EUI_8))), "");
}

TEST(NamesPage, AVendorsTextIsNoName)
{
	const std::string text =
		designator(UNIT, T10, "ACME    DISK            0001") + designator(UNIT, VENDOR, "0001");
	EXPECT_EQ(wwn_of(page(0x83, text)), "");
	EXPECT_EQ(eui_of(page(0x83, text)), "");
}

TEST(NamesPage, LengthsThatNoNaaHasAreNone)
{
	for (const size_t length : {0U, 1U, 7U, 9U, 15U})
		EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, NAA, NAA_6.substr(0, length)))), "") << length;
	EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, NAA, NAA_6 + NAA_6))), "");
}

TEST(NamesPage, ADesignatorThatReachesOutEndsThePage)
{
	std::string liar = designator(UNIT, T10, "ACME");
	liar[3] = '\x7f';
	EXPECT_EQ(wwn_of(page(0x83, designator(UNIT, NAA, NAA_5) + liar + designator(UNIT, NAA, NAA_6))),
	          "0x5000c500a1b2c3d4");
}

// Cut anywhere, a page tells what is whole of it and nothing else; the bytes behind its own are not read.
TEST(NamesPage, CutAtEachByte)
{
	const std::string whole =
		page(0x83, designator(UNIT, T10, "ACME    X") + designator(UNIT, NAA, NAA_5) +
	                           designator(UNIT, EUI, EUI_8) + designator(UNIT, NAA, NAA_6));
	const size_t naa_5 = 4 + 13 + 12;
	const size_t eui = naa_5 + 12;
	for (size_t cut = 0; cut <= whole.size(); cut++) {
		// In memory of its own, so that a sanitizer sees what reads beyond.
		const std::vector<char> bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(cut));
		Arena arena;
		const vpd_names_t names = vpd_names(&arena, std::string_view(bytes.data(), bytes.size()));
		const std::string wwn = names.wwn ? names.wwn : "";
		if (cut < naa_5)
			EXPECT_EQ(wwn, "") << cut;
		else if (cut < whole.size())
			EXPECT_EQ(wwn, "0x5000c500a1b2c3d4") << cut;
		else
			EXPECT_EQ(wwn, "0x600c0ffee0000000000000000000abcd");
		EXPECT_EQ(names.eui64 != nullptr, cut >= eui) << cut;
	}
}

// The text as IDENTIFY data have it: of each word the second character first.
std::string swapped(std::string text, size_t size)
{
	text.resize(size, ' ');
	for (size_t i = 0; i + 1 < size; i += 2)
		std::swap(text[i], text[i + 1]);
	return text;
}

std::string ata_page(const std::string &model, const std::string &serial, const std::string &firmware)
{
	return page(0x89, std::string(56 + 20, '\0') + swapped(serial, 20) + std::string(6, '\0') +
	                          swapped(firmware, 8) + swapped(model, 40) + std::string(512 - 94, '\0'));
}

TEST(AtaPage, TellsWholeTexts)
{
	const std::string bytes =
		ata_page("ACME SOLID STATE DISK SERIES 9000 PRO MX", "SN0123456789ABCDEFGH", "FW1.2345");
	Arena arena;
	const ata_identity_t told = vpd_ata_identity(&arena, std::string_view(bytes));
	EXPECT_STREQ(told.model, "ACME SOLID STATE DISK SERIES 9000 PRO MX");
	EXPECT_STREQ(told.serial, "SN0123456789ABCDEFGH");
	EXPECT_STREQ(told.firmware, "FW1.2345");
}

TEST(AtaPage, BlanksAreCutAndNoiseIsShown)
{
	const std::string bytes = ata_page("  ODD \xff", "", "\x1b");
	Arena arena;
	const ata_identity_t told = vpd_ata_identity(&arena, std::string_view(bytes));
	EXPECT_STREQ(told.model, "ODD \\xff");
	EXPECT_EQ(told.serial, nullptr);
	EXPECT_STREQ(told.firmware, "\\x1b");
}

TEST(AtaPage, CutAtEachByteTellsAllOrNothing)
{
	const std::string whole = ata_page("MODEL", "SERIAL", "FW");
	for (size_t cut = 0; cut <= whole.size(); cut++) {
		const std::vector<char> bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(cut));
		Arena arena;
		const ata_identity_t told =
			vpd_ata_identity(&arena, std::string_view(bytes.data(), bytes.size()));
		EXPECT_EQ(told.model != nullptr, cut == whole.size()) << cut;
		EXPECT_EQ(told.serial != nullptr, cut == whole.size()) << cut;
		EXPECT_EQ(told.firmware != nullptr, cut == whole.size()) << cut;
	}
}

TEST(AtaPage, ALengthThatIsTooShortOrAnotherPageTellsNothing)
{
	std::string bytes = ata_page("MODEL", "SERIAL", "FW");
	bytes[2] = 0;
	Arena arena;
	EXPECT_EQ(vpd_ata_identity(&arena, std::string_view(bytes)).model, nullptr);
	bytes = ata_page("MODEL", "SERIAL", "FW");
	bytes[1] = '\x80';
	EXPECT_EQ(vpd_ata_identity(&arena, std::string_view(bytes)).model, nullptr);
}

TEST(Pages, OfNoiseTellNothingThatIsNoName)
{
	unsigned state = 1;
	for (int round = 0; round < 2000; round++) {
		std::vector<char> bytes(static_cast<size_t>(round) % 600);
		for (char &byte : bytes) {
			state = state * 1103515245U + 12345U;
			byte = static_cast<char>(state >> 16);
		}
		if (bytes.size() > 1)
			bytes[1] = "\x80\x83\x89"[round % 3];
		const text_t noise = std::string_view(bytes.data(), bytes.size());
		Arena arena;
		const vpd_names_t names = vpd_names(&arena, noise);
		vpd_serial(noise);
		vpd_ata_identity(&arena, noise);
		const std::string wwn = names.wwn ? names.wwn : "0x";
		EXPECT_EQ(wwn.find_first_not_of("0123456789abcdef", 2), std::string::npos);
	}
}

} // namespace
