// SPDX-License-Identifier: Apache-2.0
// Sixteen-byte identities in their text form.
#include "host.h"

#include "hdd/sal/src/linux/xxid.h"

namespace
{

std::string unparsed(const unsigned char (&id)[16])
{
	str_t text;
	memset(text, 'x', sizeof text);
	EXPECT_EQ(xxid_unparse(id, text), 0);
	return text_of(text);
}

TEST(Xxid, WritesTheBytesInOrderWithTheUsualDashes)
{
	const unsigned char id[16] = {0x00, 0x01, 0x02, 0x03, 0x14, 0x15, 0x26, 0x27,
	                              0x38, 0x39, 0x4a, 0x4b, 0x4c, 0x4d, 0x4e, 0x4f};
	EXPECT_EQ(unparsed(id), "00010203-1415-2627-3839-4a4b4c4d4e4f");
}

TEST(Xxid, IsLowerCase)
{
	const unsigned char id[16] = {0xAB, 0xCD, 0xEF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
	                              0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE};
	EXPECT_EQ(unparsed(id), "abcdefff-ffff-ffff-ffff-fffffffffffe");
}

// Version 4 in the seventh byte, the variant in the ninth; the other bits are drawn.
TEST(Xxid, NewOnesAreRandom)
{
	unsigned char first[16];
	unsigned char second[16];
	xxid_generate(first);
	xxid_generate(second);
	EXPECT_EQ(first[6] >> 4, 4);
	EXPECT_EQ(first[8] >> 6, 2);
	EXPECT_NE(memcmp(first, second, sizeof first), 0);
}

TEST(Xxid, ZeroIsWrittenOut)
{
	const unsigned char id[16] = {};
	EXPECT_EQ(unparsed(id), "00000000-0000-0000-0000-000000000000");
}

} // namespace
