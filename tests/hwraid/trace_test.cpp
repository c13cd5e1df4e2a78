// SPDX-License-Identifier: Apache-2.0
// The debug trace: decided once, by a file in the working directory, and never on standard output.
#include "site.h"

#include "hwraid/aacraid/create_a_uuid.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <string.h>

namespace
{

class TraceTest : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		g_nIfNeedDebug = -1;
	}
	void TearDown() override
	{
		std::filesystem::remove("I_NEED_DEBUG_NOW.txt");
		SiteTest::TearDown();
		g_nIfNeedDebug = -1;
	}
};

TEST_F(TraceTest, IsOffWithoutTheMarkerAndStaysOff)
{
	testing::internal::CaptureStderr();
	EXPECT_EQ(OutputDebugString("%s\n", "one"), 0);
	write_file("I_NEED_DEBUG_NOW.txt", "");
	EXPECT_EQ(OutputDebugString("%s\n", "two"), 0);
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
	EXPECT_EQ(g_nIfNeedDebug, 0);
}

TEST_F(TraceTest, IsOnWithTheMarkerAndStaysOn)
{
	write_file("I_NEED_DEBUG_NOW.txt", "whatever");
	testing::internal::CaptureStdout();
	testing::internal::CaptureStderr();
	EXPECT_EQ(OutputDebugString("%s %d", "one", 2), 5);
	std::filesystem::remove("I_NEED_DEBUG_NOW.txt");
	EXPECT_EQ(OutputDebugString("\n"), 1);
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "one 2\n");
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
	EXPECT_EQ(g_nIfNeedDebug, 1);
}

TEST(Uuid, IsFreshAndThirtySixCharactersLong)
{
	char one[37];
	char two[37];
	EXPECT_EQ(CreateOneUuid(one), 0);
	EXPECT_EQ(CreateOneUuid(two), 0);
	EXPECT_EQ(strlen(one), 36U);
	EXPECT_EQ(strspn(one, "0123456789abcdefABCDEF-"), 36U);
	EXPECT_STRNE(one, two);
}

} // namespace
