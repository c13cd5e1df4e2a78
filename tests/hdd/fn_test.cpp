// SPDX-License-Identifier: Apache-2.0
// File names and device names.
#include "host.h"

#include "hdd/sal/src/0/fn.h"

#include <limits.h>

namespace
{

struct split_row_t {
	const char *path;
	const char *base;
	const char *stem;
	int number;
};

class Split : public ::testing::TestWithParam<split_row_t>
{
};

TEST_P(Split, IntoBaseStemAndNumber)
{
	const split_row_t &row = GetParam();
	const devname_t name = split_devname(row.path);
	EXPECT_EQ(name.base, row.base);
	EXPECT_EQ(name.stem, row.stem);
	EXPECT_EQ(name.number, row.number);
}

INSTANTIATE_TEST_SUITE_P(
	Names, Split,
	::testing::Values(
		split_row_t{"/dev/sda12", "sda12", "sda", 12}, split_row_t{"sda", "sda", "sda", -1},
		split_row_t{"sda0", "sda0", "sda", 0}, split_row_t{"sda007", "sda007", "sda", 7},
		split_row_t{"c0d0p1", "c0d0p1", "c0d0p", 1}, split_row_t{"/dev/cciss/c0d0", "c0d0", "c0d", 0},
		split_row_t{"123", "123", "", 123}, split_row_t{"", "", "", -1}, split_row_t{"/", "", "", -1},
		split_row_t{"/dev/", "", "", -1}, split_row_t{"a1/b", "b", "b", -1},
		split_row_t{"sda2147483647", "sda2147483647", "sda", INT_MAX},
		split_row_t{"sda2147483646", "sda2147483646", "sda", INT_MAX - 1},
		split_row_t{"sda4294967297", "sda4294967297", "sda", INT_MAX},
		split_row_t{"sda99999999999999999999999", "sda99999999999999999999999", "sda", INT_MAX}));

TEST(DeviceNames, IdeStems)
{
	for (char letter = 'a'; letter <= 'z'; letter++) {
		const std::string stem = std::string("hd") + letter;
		EXPECT_EQ(is_ide_stem(stem), letter <= 't') << stem;
	}
	for (const char *stem : {"", "hd", "hdaa", "hdA", "hd`", "hdu", "sda", "hca", "ida", "hd\xff", "HDA"})
		EXPECT_FALSE(is_ide_stem(stem)) << stem;
}

TEST(DeviceNames, ScsiStemsOfThreeLetters)
{
	for (char letter = 'a'; letter <= 'z'; letter++)
		EXPECT_TRUE(is_scsi_stem(std::string("sd") + letter)) << letter;
	for (const char *stem :
	     {"", "sd", "sd`", "sd{", "sdA", "hda", "hdu", "sea", "sca", "ram", "SDA", "fd"})
		EXPECT_FALSE(is_scsi_stem(stem)) << stem;
}

TEST(DeviceNames, ScsiStemsOfFourLettersCountTheLastTwo)
{
	for (char third = 'a'; third <= 'z'; third++) {
		for (char fourth = 'a'; fourth <= 'z'; fourth++) {
			const bool expected = third < 'd' || (third == 'd' && fourth <= 'x');
			for (const char *front : {"sd", "hd", "0:"})
				EXPECT_EQ(is_scsi_stem(std::string(front) + third + fourth), expected)
					<< front << third << fourth;
		}
	}
	for (const char *stem : {"sd`a", "sda`", "sda{", "sdaA", "sdAa", "sdaaa", "loop"})
		EXPECT_FALSE(is_scsi_stem(stem)) << stem;
}

struct shape_row_t {
	const char *name;
	bool ide;
	bool scsi;
};

class Shape : public ::testing::TestWithParam<shape_row_t>
{
};

TEST_P(Shape, OfTheName)
{
	const devname_t name = split_devname(GetParam().name);
	EXPECT_EQ(is_ide_name(name), GetParam().ide) << GetParam().name;
	EXPECT_EQ(is_scsi_name(name), GetParam().scsi) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(
	Borders, Shape,
	::testing::Values(shape_row_t{"hda", true, false}, shape_row_t{"hda1", true, false},
                          shape_row_t{"hda16", true, false}, shape_row_t{"hda17", false, false},
                          shape_row_t{"hda0", false, false}, shape_row_t{"hdt16", true, false},
                          shape_row_t{"hdu", false, false}, shape_row_t{"sda", false, true},
                          shape_row_t{"sda1", false, true}, shape_row_t{"sda15", false, true},
                          shape_row_t{"sda16", false, false}, shape_row_t{"sda0", false, false},
                          shape_row_t{"sdz15", false, true}, shape_row_t{"sdaa", false, true},
                          shape_row_t{"hdaa15", false, true}, shape_row_t{"sddx15", false, true},
                          shape_row_t{"sddx16", false, false}, shape_row_t{"sddy", false, false},
                          shape_row_t{"sddz1", false, false}, shape_row_t{"/dev/hdc3", true, false},
                          shape_row_t{"/dev/sdb3", false, true}, shape_row_t{"md1", false, false},
                          shape_row_t{"hda4294967297", false, false},
                          shape_row_t{"sda4294967297", false, false}));

TEST(FnJoin, PutsTheSeparatorBetween)
{
	fname_t path;
	memset(path, 'x', sizeof path);
	EXPECT_EQ(fn_join(path, "/proc/ide", "hda"), 0);
	EXPECT_STREQ(path, "/proc/ide/hda");
}

TEST(FnJoin, FillsTheBufferToItsLastByte)
{
	fname_t path;
	const std::string name = repeat("n", 4095 - 5);
	EXPECT_EQ(fn_join(path, "/dir", name.c_str()), 0);
	EXPECT_EQ(std::string(path), "/dir/" + name);
}

TEST(FnJoin, RefusesWhatDoesNotFit)
{
	fname_t path;
	memset(path, 'x', sizeof path);
	EXPECT_EQ(fn_join(path, "/dir", repeat("n", 4096 - 5).c_str()), -1);
	EXPECT_EQ(path[0], 0);
	memset(path, 'x', sizeof path);
	EXPECT_EQ(fn_join(path, repeat("d", 5000).c_str(), "n"), -1);
	EXPECT_EQ(path[0], 0);
}

} // namespace
