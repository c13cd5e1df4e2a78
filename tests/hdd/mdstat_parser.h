// SPDX-License-Identifier: Apache-2.0
// What the tests of the array parser share: three lines in, what they mean out.
#ifndef DISKSCOUT_TESTS_HDD_MDSTAT_PARSER_H
#define DISKSCOUT_TESTS_HDD_MDSTAT_PARSER_H

#include "mdstat_described.h"

// Lines with nothing special about them.
const char *const ARRAY_LINE = "md0 : active raid1 sdc1[1] sdb1[0]\n";
const char *const SIZE_LINE = "      12224 blocks [2/2] [UU]\n";
const char *const NO_PROGRESS = "      \n";

class MdstatParser : public ::testing::Test
{
protected:
	int parse(const std::string &array, const std::string &size, const std::string &progress,
	          filter_func_t filter = nullptr, void *arg = nullptr)
	{
		// On the heap, where reading behind the third line is noticed.
		auto lines = std::make_unique<char[][LINE_SIZE]>(3);
		int i = 0;
		for (const std::string *line : {&array, &size, &progress})
			line->copy(lines[static_cast<size_t>(i++)], LINE_SIZE);
		dev = soiled<mdstat_dev_t>();
		return parse_mdstat_dev(dev.get(), filter, arg, lines.get());
	}
	// What the lines mean, or "-1".
	std::string parsed(const std::string &array, const std::string &size = SIZE_LINE,
	                   const std::string &progress = NO_PROGRESS)
	{
		const int result = parse(array, size, progress);
		if (result == 0) {
			expect_wired(*dev);
			return described(*dev);
		}
		EXPECT_TRUE(is_zero(*dev)) << array << size << progress;
		return number(result);
	}
	std::unique_ptr<mdstat_dev_t> dev;
};

#endif
