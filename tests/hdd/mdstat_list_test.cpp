// SPDX-License-Identifier: Apache-2.0
// The reader of the whole table of software-RAID arrays, and its dump: each case of mdstat.cases is such a
// table and what it means: a line with the reader's result, then a line an array as in mdstat_described.h.
//
// Below them, what is too long or too broken for such a file.
#include "../cases.h"
#include "host.h"
#include "mdstat_described.h"

#include "replay/replay.h"

namespace
{

const std::string FIRST = "md0 : active raid1 sdb1[1] sda1[0]\n"
			  "      104320 blocks [2/2] [UU]\n"
			  "      \n";
const std::string SECOND = "md1 : active raid5 sdc2[2](F) sdb2[1] sda2[0]\n"
			   "      4194048 blocks level 5, 64k chunk, algorithm 2 [3/2] [UU_]\n"
			   "      [=>..]  recovery =  8.5% (178247/2097024) finish=17.0min speed=2597K/sec\n"
			   "      \n";
const std::string FIRST_MEANS = "0|active|1|2|2|0|UU|none|0|208640|2|2|0:sda1 1:sdb1\n";
const std::string SECOND_MEANS = "1|active|5|3|2|1|UU_|recovery|85|8388096|3|3|0:sda2 1:sdb2 2:sdc2(F)\n";

class MdstatList : public HostTest
{
protected:
	int read(const std::string &text, filter_func_t filter = nullptr, void *arg = nullptr)
	{
		host.file("/proc/mdstat", text);
		return read(filter, arg);
	}
	int read(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		list = soiled<mdstat_devlist_t>();
		return parse_mdstat_devlist(list.get(), filter, arg);
	}
	std::string arrays() const
	{
		std::string text;
		for (const mdstat_dev_t &dev : live_items(*list)) {
			expect_wired(dev);
			text += described(dev) + "\n";
		}
		return text;
	}
	// The result, then the arrays.
	std::string meaning(const std::string &text)
	{
		const int result = read(text);
		EXPECT_EQ(list->num, list->num_real);
		expect_shape(*list, list->num, list->num_real, 16);
		return "result " + number(result) + "\n" + arrays();
	}
	std::unique_ptr<mdstat_devlist_t> list;
};

class MdstatTable : public MdstatList, public ::testing::WithParamInterface<Case>
{
};

TEST_P(MdstatTable, MeansWhatIsWrittenBesideIt)
{
	EXPECT_EQ(meaning(GetParam().text), GetParam().meaning);
}

INSTANTIATE_TEST_SUITE_P(Tables, MdstatTable, ::testing::ValuesIn(read_cases(HDD_DIRECTORY "/mdstat.cases")),
                         case_test_name);

TEST_F(MdstatList, ArraysBelongToTheList)
{
	EXPECT_EQ(read("Personalities : [raid1] [raid5] \n" + FIRST + SECOND), 0);
	expect_shape(*list, 2, 2, 16);
	for (int slot = 0; slot < 2; slot++) {
		const mdstat_dev_t &dev = list->item[slot];
		EXPECT_EQ(dev.subdevlist.parent, nullptr);
		for (const mdstat_subdev_t &member : live_items(dev.subdevlist))
			EXPECT_EQ(member.parent, &dev.subdevlist);
	}
	EXPECT_EQ(arrays(), FIRST_MEANS + SECOND_MEANS);
}

TEST_F(MdstatList, MissingTable)
{
	EXPECT_EQ(read(), -1);
	expect_shape(*list, 0, 0, 16);
}

// A directory can be opened as a file, but not read.
TEST_F(MdstatList, TableThatCannotBeRead)
{
	host.directory("/proc/mdstat");
	EXPECT_EQ(read(), -1);
	expect_shape(*list, 0, 0, 16);
}

// The open, the first array's three lines, the second's first: then the sixth call fails.
TEST_F(MdstatList, WhatWasReadBeforeAFailureIsKept)
{
	host.file("/proc/mdstat", FIRST + SECOND);
	list = soiled<mdstat_devlist_t>();
	replay_fail_call(6, 0);
	EXPECT_EQ(parse_mdstat_devlist(list.get(), nullptr, nullptr), -1);
	replay_fail_call(0, 0);
	expect_shape(*list, 1, 1, 16);
	EXPECT_EQ(arrays(), FIRST_MEANS);
}

TEST_F(MdstatList, LineEndsOfOtherSystems)
{
	std::string text = "Personalities : [raid1] [raid5] \n" + FIRST + SECOND;
	for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
		text.replace(at, 1, "\r\n");
	EXPECT_EQ(meaning(text), "result 0\n" + FIRST_MEANS + SECOND_MEANS);
}

TEST_F(MdstatList, MemberThatEndsItsLineFailed)
{
	const std::string size = "      104320 blocks [2/1] [U_]\n\n";
	const std::string means = "result 0\n0|active|1|2|1|1|U_|none|0|208640|2|2|0:sda1 1:sdb1(F)\n";
	for (const char *end : {"\n", "\r\n", " \n"}) {
		std::string text = "md0 : active raid1 sda1[0] sdb1[1](F)";
		text += end;
		EXPECT_EQ(meaning(text + size), means);
	}
}

TEST_F(MdstatList, LineEndsAtANul)
{
	using namespace std::string_literals;
	EXPECT_EQ(meaning("md0 : active raid1 sda1[0]\0 sdb1[1]\n"s + "      104320 blocks\0 [2/2] [UU]\n"s +
	                  "      \0resync = 5%\n"s),
	          "result 0\n0|active|1|0|0|0||none|0|208640|1|1|0:sda1\n");
	EXPECT_EQ(meaning("\0md0 : active raid1 sda1[0]\n"s + SECOND), "result 0\n" + SECOND_MEANS);
	EXPECT_EQ(meaning("\0\n"s + FIRST + "\0\0\0"s), "result 0\n" + FIRST_MEANS);
}

TEST_F(MdstatList, LongLinesBetweenArrays)
{
	for (const int length : {1022, 1023, 1024, 1025, 2046, 5000}) {
		const std::string noise = repeat("x", length) + "\n";
		EXPECT_EQ(meaning(noise + FIRST + noise + SECOND + noise),
		          "result 0\n" + FIRST_MEANS + SECOND_MEANS)
			<< length;
	}
}

// As long as a line may be, its end included.
TEST_F(MdstatList, LongestArrayLine)
{
	std::string line = FIRST.substr(0, FIRST.find('\n'));
	line += repeat(" ", static_cast<int>(1022 - line.size()));
	EXPECT_EQ(meaning(line + FIRST.substr(FIRST.find('\n')) + SECOND),
	          "result 0\n" + FIRST_MEANS + SECOND_MEANS);
}

TEST_F(MdstatList, MalformedArraysAreSkippedAndTold)
{
	EXPECT_EQ(meaning("md7 : active raid6 sda1[0]\n      104320 blocks [2/2] [UU]\n      \n" + SECOND),
	          "result -1\n" + SECOND_MEANS);
	EXPECT_EQ(meaning(FIRST + "md7 : active raid1 sda1[8]\n      1024 blocks [2/2] [UU]\n      \n" +
	                  SECOND),
	          "result -1\n" + FIRST_MEANS + SECOND_MEANS);
	EXPECT_EQ(meaning(FIRST + SECOND + "md7 : active raid1 sda1[0]\n"),
	          "result -1\n" + FIRST_MEANS + SECOND_MEANS);
}

std::string many(int count)
{
	std::string text;
	for (int i = 0; i < count; i++)
		text += printed("md%d : active raid0 sda[0]\n      1024 blocks 4k chunks\n      \n", i);
	return text;
}

TEST_F(MdstatList, Holds16)
{
	filter_calls_t calls = {1, 0};
	EXPECT_EQ(read(many(16), counting_filter, &calls), 0);
	expect_shape(*list, 16, 16, 16);
	EXPECT_EQ(calls.calls, 16);
	calls.calls = 0;
	EXPECT_EQ(read(many(19), counting_filter, &calls), -1);
	expect_shape(*list, 16, 16, 16);
	EXPECT_EQ(calls.calls, 19);
	for (int slot = 0; slot < 16; slot++)
		EXPECT_EQ(list->item[slot].mdminor, slot);
}

int from_number(const void *item, const void *arg)
{
	return static_cast<const mdstat_dev_t *>(item)->mdminor >= *static_cast<const int *>(arg) ? 7 : 0;
}

TEST_F(MdstatList, DroppedArraysAreNoError)
{
	int first = 5;
	EXPECT_EQ(read(many(19), from_number, &first), 0);
	expect_shape(*list, 14, 14, 16);
	for (int slot = 0; slot < 14; slot++) {
		EXPECT_EQ(list->item[slot].mdminor, slot + 5);
		expect_wired(list->item[slot]);
	}
	first = 19;
	EXPECT_EQ(read(many(19), from_number, &first), 0);
	expect_shape(*list, 0, 0, 16);
}

TEST_F(MdstatList, EveryFailureIsToldOrDoesNoHarm)
{
	host.file("/proc/mdstat", "Personalities : [raid1] [raid5] \n" + FIRST + SECOND);
	for (const int from_there_on : {0, 1}) {
		for (long nth = 1;; nth++) {
			list = soiled<mdstat_devlist_t>();
			const int before = open_descriptors();
			replay_fail_call(nth, from_there_on);
			const int result = parse_mdstat_devlist(list.get(), nullptr, nullptr);
			replay_fail_call(0, 0);
			const long calls = replay_calls();
			EXPECT_EQ(open_descriptors(), before) << nth;
			expect_shape(*list, list->num, list->num, 16);
			// A failed line may cost an array, and never a part of one.
			EXPECT_THAT(lines_of(arrays()),
			            ::testing::IsSubsetOf(lines_of(FIRST_MEANS + SECOND_MEANS)))
				<< nth;
			if (result == 0) {
				EXPECT_EQ(arrays(), FIRST_MEANS + SECOND_MEANS) << nth;
			} else {
				EXPECT_EQ(result, -1) << nth;
			}
			if (calls < nth)
				break;
		}
	}
}

class MdstatDump : public ::testing::Test
{
protected:
	void SetUp() override { list_clear(list.get()); }
	mdstat_dev_t &add(int slot, int mdminor)
	{
		auto dev = std::make_unique<mdstat_dev_t>();
		dev->mdminor = mdminor;
		dev->mdlevel = '1';
		EXPECT_EQ(list_add(list.get(), slot, *dev), 0);
		list_clear(&list->item[slot].subdevlist);
		return list->item[slot];
	}
	static void add_member(mdstat_dev_t *dev, int role, const char *name, int faulty)
	{
		auto member = std::make_unique<mdstat_subdev_t>();
		strcpy(member->name, name);
		member->faulty = faulty;
		EXPECT_EQ(list_add(&dev->subdevlist, role, *member), 0);
	}
	std::string item_head(int slot) const { return printed("[*%d 1  %08x*] ", slot, low32(list.get())); }
	std::string dump() const
	{
		return stderr_of([&] { display_mdstat_devlist(list.get()); });
	}
	std::unique_ptr<mdstat_devlist_t> list = std::make_unique<mdstat_devlist_t>();
};

TEST_F(MdstatDump, EveryField)
{
	mdstat_dev_t &dev = add(0, 127);
	dev.active = 1;
	dev.mdlevel = '5';
	dev.nr_original = 4;
	dev.nr_normal = 3;
	dev.nr_faulty = 2;
	strcpy(dev.status, "UU_U");
	dev.resync_type = 1;
	dev.resync_progress = 456;
	dev.size = 24448;
	add_member(&dev, 0, "sda1", 0);
	add_member(&dev, 2, "sdc1", 1);
	add_member(&dev, 5, "0B:00", 0);
	EXPECT_EQ(dump(), dump_head(*list) + item_head(0) +
	                          "md127: active   5      24448 [4/3](F2) UU_U 45.6%1\n"
	                          "    subdev(num=6,num_real=3): sda1[0] sdc1[2](F) 0B:00[5]\n");
}

TEST_F(MdstatDump, InactiveArrayWithoutMembers)
{
	mdstat_dev_t &dev = add(0, 3);
	dev.mdlevel = 'l';
	dev.resync_type = 2;
	dev.resync_progress = 7;
	dev.size = 1234567890;
	EXPECT_EQ(dump(), dump_head(*list) + item_head(0) +
	                          "md3: inactive l 1234567890 [0/0](F0)  0.7%2\n"
	                          "    subdev(num=0,num_real=0):\n");
}

TEST_F(MdstatDump, FreeSlotsAreLeftOut)
{
	add(1, 4);
	mdstat_dev_t &last = add(15, 5);
	last.resync_progress = 1000;
	add_member(&last, 7, "hda", 1);
	EXPECT_EQ(dump(), dump_head(*list) + item_head(1) +
	                          "md4: inactive 1          0 [0/0](F0)  0.0%0\n"
	                          "    subdev(num=0,num_real=0):\n" +
	                          item_head(15) +
	                          "md5: inactive 1          0 [0/0](F0)  100.0%0\n"
	                          "    subdev(num=8,num_real=1): hda[7](F)\n");
}

TEST_F(MdstatDump, EmptyList)
{
	EXPECT_EQ(dump(), dump_head(*list));
}

// A level that is not told is the character 0.
TEST_F(MdstatDump, ArrayWithoutALevel)
{
	add(0, 2).mdlevel = 0;
	EXPECT_EQ(dump(), dump_head(*list) + item_head(0) + "md2: inactive " + std::string(1, '\0') +
	                          "          0 [0/0](F0)  0.0%0\n    subdev(num=0,num_real=0):\n");
}

TEST_F(MdstatDump, SizesShowTheirLow32Bits)
{
	add(0, 0).size = (1UL << 32) + 7;
	add(1, 1).size = (1UL << 31);
	EXPECT_EQ(dump(), dump_head(*list) + item_head(0) +
	                          "md0: inactive 1          7 [0/0](F0)  0.0%0\n"
	                          "    subdev(num=0,num_real=0):\n" +
	                          item_head(1) +
	                          "md1: inactive 1 -2147483648 [0/0](F0)  0.0%0\n"
	                          "    subdev(num=0,num_real=0):\n");
}

} // namespace
