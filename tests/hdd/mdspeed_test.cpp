// SPDX-License-Identifier: Apache-2.0
// The limits of the kernel's resynchronisation speed.
#include "host.h"

#include "hdd/sal/src/linux/mdspeed.h"
#include "replay/replay.h"

namespace
{

const char *const MIN_FILE = "/proc/sys/dev/raid/speed_limit_min";
const char *const MAX_FILE = "/proc/sys/dev/raid/speed_limit_max";

class Mdspeed : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		limits("1000\n", "200000\n");
	}
	void limits(const char *min, const char *max) { host.file(MIN_FILE, min).file(MAX_FILE, max); }
	// The log of setting both limits, with the result as its last line.
	std::vector<std::string> set(size32_t min, size32_t max)
	{
		host.show();
		const mdspeed_t speed = {max, min};
		const int result = set_mdspeed(&speed);
		std::vector<std::string> lines = host.log();
		lines.push_back("result " + number(result));
		return lines;
	}
};

std::string wrote(const char *file, const char *text)
{
	return printed("write %s \"%s\"", file, text);
}

TEST_F(Mdspeed, Get)
{
	mdspeed_t speed = {1, 2};
	EXPECT_EQ(get_mdspeed(&speed), 0);
	EXPECT_EQ(speed.min, 1000U);
	EXPECT_EQ(speed.max, 200000U);
	EXPECT_TRUE(host.log().empty());
}

TEST_F(Mdspeed, GetTakesTheFirstNumber)
{
	static const struct {
		const char *min;
		const char *max;
		size32_t min_value;
		size32_t max_value;
	} rows[] = {
		{"100\n", "10000\n", 100, 10000},
		{"100", "10000", 100, 10000},
		{"100 (system)\n", "10000 (local)\n", 100, 10000},
		{"0\n", "2147483647\n", 0, 2147483647},
		{"7\n8\n", "9 10\n", 7, 9},
	};
	for (const auto &row : rows) {
		limits(row.min, row.max);
		mdspeed_t speed = {1, 2};
		EXPECT_EQ(get_mdspeed(&speed), 0) << row.min << row.max;
		EXPECT_EQ(speed.min, row.min_value) << row.min;
		EXPECT_EQ(speed.max, row.max_value) << row.max;
	}
}

TEST_F(Mdspeed, GetNeedsBothFiles)
{
	for (const char *file : {MIN_FILE, MAX_FILE}) {
		limits("1000\n", "200000\n");
		host.remove(file);
		mdspeed_t speed = {1, 2};
		EXPECT_EQ(get_mdspeed(&speed), -1) << file;
		EXPECT_EQ(speed.min, 0U) << file;
		EXPECT_EQ(speed.max, 0U) << file;
	}
}

TEST_F(Mdspeed, GetNeedsANumberInEach)
{
	for (const char *text : {"", "\n", "none\n"}) {
		for (const bool in_min : {true, false}) {
			limits(in_min ? text : "1000\n", in_min ? "200000\n" : text);
			mdspeed_t speed = {1, 2};
			EXPECT_EQ(get_mdspeed(&speed), -1) << text;
			EXPECT_EQ(speed.min, 0U) << text;
			EXPECT_EQ(speed.max, 0U) << text;
		}
	}
}

TEST_F(Mdspeed, SetWritesTheMinimumFirst)
{
	EXPECT_THAT(set(100, 10000),
	            ::testing::ElementsAre(wrote(MIN_FILE, "100"), wrote(MAX_FILE, "10000"), "result 0"));
	EXPECT_THAT(set(1, 2147483647),
	            ::testing::ElementsAre(wrote(MIN_FILE, "1"), wrote(MAX_FILE, "2147483647"), "result 0"));
	EXPECT_THAT(set(500, 500),
	            ::testing::ElementsAre(wrote(MIN_FILE, "500"), wrote(MAX_FILE, "500"), "result 0"));
}

TEST_F(Mdspeed, ZeroLeavesALimitAsItIs)
{
	EXPECT_THAT(set(0, 10000), ::testing::ElementsAre(wrote(MAX_FILE, "10000"), "result 0"));
	EXPECT_THAT(set(5000, 0), ::testing::ElementsAre(wrote(MIN_FILE, "5000"), "result 0"));
	EXPECT_THAT(set(0, 0), ::testing::ElementsAre("result 0"));
}

TEST_F(Mdspeed, MinimumAboveTheMaximumWritesNothing)
{
	EXPECT_THAT(set(5000, 1000), ::testing::ElementsAre("result -1"));
	EXPECT_THAT(set(501, 500), ::testing::ElementsAre("result -1"));
	EXPECT_THAT(set(1UL << 32, 500), ::testing::ElementsAre("result -1"));
}

TEST_F(Mdspeed, OneLimitThatCannotBeWrittenDoesNotKeepTheOther)
{
	host.remove(MIN_FILE);
	EXPECT_THAT(set(100, 10000), ::testing::ElementsAre(wrote(MAX_FILE, "10000"), "result -1"));
	EXPECT_THAT(set(100, 0), ::testing::ElementsAre("result -1"));
	EXPECT_THAT(set(0, 10000), ::testing::ElementsAre(wrote(MAX_FILE, "10000"), "result 0"));
	limits("1000\n", "200000\n");
	host.remove(MAX_FILE);
	EXPECT_THAT(set(100, 10000), ::testing::ElementsAre(wrote(MIN_FILE, "100"), "result -1"));
	EXPECT_THAT(set(0, 10000), ::testing::ElementsAre("result -1"));
	EXPECT_THAT(set(0, 0), ::testing::ElementsAre("result 0"));
}

TEST_F(Mdspeed, Default)
{
	host.show();
	EXPECT_EQ(set_mdspeed_default(), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre(wrote(MIN_FILE, "100"), wrote(MAX_FILE, "10000")));
	host.remove(MAX_FILE);
	EXPECT_EQ(set_mdspeed_default(), -1);
}

TEST_F(Mdspeed, EveryFailureOfGetIsToldOrDoesNoHarm)
{
	for (const int from_there_on : {0, 1}) {
		for (long nth = 1;; nth++) {
			mdspeed_t speed = {1, 2};
			const int before = open_descriptors();
			replay_fail_call(nth, from_there_on);
			const int result = get_mdspeed(&speed);
			replay_fail_call(0, 0);
			const long calls = replay_calls();
			EXPECT_EQ(open_descriptors(), before) << nth;
			EXPECT_EQ(speed.min, result == 0 ? 1000U : 0U) << nth;
			EXPECT_EQ(speed.max, result == 0 ? 200000U : 0U) << nth;
			EXPECT_TRUE(result == 0 || result == -1) << nth;
			if (calls < nth)
				break;
		}
	}
}

TEST_F(Mdspeed, EveryFailureOfSetIsToldOrDoesNoHarm)
{
	const std::string min = wrote(MIN_FILE, "100");
	const std::string max = wrote(MAX_FILE, "10000");
	for (const int from_there_on : {0, 1}) {
		for (long nth = 1;; nth++) {
			host.show();
			const int before = open_descriptors();
			const mdspeed_t speed = {10000, 100};
			replay_fail_call(nth, from_there_on);
			const int result = set_mdspeed(&speed);
			replay_fail_call(0, 0);
			const long calls = replay_calls();
			EXPECT_EQ(open_descriptors(), before) << nth;
			const std::vector<std::string> log = host.log();
			if (result == 0) {
				EXPECT_THAT(log, ::testing::ElementsAre(min, max)) << nth;
			} else {
				EXPECT_EQ(result, -1) << nth;
				for (const std::string &line : log)
					EXPECT_TRUE(line == min || line == max) << line;
				EXPECT_LE(log.size(), 2U) << nth;
			}
			if (calls < nth)
				break;
		}
	}
}

// The minimum's file is opened by the first call and written to by the second.
TEST_F(Mdspeed, MaximumIsWrittenAfterAFailureOfTheMinimum)
{
	for (const long nth : {1L, 2L}) {
		host.show();
		const mdspeed_t speed = {10000, 100};
		replay_fail_call(nth, 0);
		EXPECT_EQ(set_mdspeed(&speed), -1) << nth;
		replay_fail_call(0, 0);
		EXPECT_THAT(host.log(), ::testing::ElementsAre(wrote(MAX_FILE, "10000"))) << nth;
	}
}

} // namespace
