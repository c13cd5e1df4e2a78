// SPDX-License-Identifier: Apache-2.0
// The IDE drives that the kernel lists under /proc/ide.
#include "host.h"

#include "hdd/sal/src/linux/procide.h"

namespace
{

class ProcideTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		dev = soiled<procide_dev_t>();
		list = soiled<procide_devlist_t>();
	}
	int parse(const char *name, filter_func_t filter = nullptr, void *arg = nullptr)
	{
		dev = soiled<procide_dev_t>();
		return parse_procide_dev(dev.get(), filter, arg, name);
	}
	int parse_all(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		return parse_procide_devlist(list.get(), filter, arg);
	}
	void expect_failure(const char *name)
	{
		EXPECT_EQ(parse(name), -1) << name;
		EXPECT_TRUE(is_zero(*dev)) << name;
	}
	std::vector<std::string> names() const
	{
		std::vector<std::string> names;
		for (const procide_dev_t &item : list->item)
			if (item.tag)
				names.push_back(text_of(item.name));
		return names;
	}
	std::unique_ptr<procide_dev_t> dev;
	std::unique_ptr<procide_devlist_t> list;
};

TEST_F(ProcideTest, ReadsADrive)
{
	host.ide_drive("hda", "disk", "EXAMPLE DRIVE", "SN00001", "2.5+");
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(dev->tag, 1);
	EXPECT_EQ(dev->index, 0);
	EXPECT_EQ(dev->parent, nullptr);
	EXPECT_EQ(text_of(dev->name), "hda");
	EXPECT_EQ(text_of(dev->media), "disk");
	EXPECT_EQ(text_of(dev->model), "EXAMPLE DRIVE");
	EXPECT_EQ(text_of(dev->sn), "SN00001");
	EXPECT_EQ(text_of(dev->rev), "2.5+");
}

TEST_F(ProcideTest, WordsAreCutOutHighByteFirst)
{
	// Line n holds the 16 characters from 16 * n on: the serial number is characters 20 to 39, the
	// revision 46 to 53.
	const std::string letters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz+-";
	std::string text;
	for (size_t i = 0; i < 64; i += 2)
		text += printed("%02X%02x%s", static_cast<unsigned>(letters[i]),
		                static_cast<unsigned>(letters[i + 1]), i % 16 == 14 ? "\n" : " ");
	host.ide_drive("hda", "disk").file("/proc/ide/ide0/hda/identify", text + identify_lines(28));
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(text_of(dev->sn), "KLMNOPQRSTUVWXYZabcd");
	EXPECT_EQ(text_of(dev->rev), "klmnopqr");
}

struct field_row_t {
	const char *raw;
	const char *field;
};

class Field : public ProcideTest, public ::testing::WithParamInterface<field_row_t>
{
};

TEST_P(Field, IsTrimmed)
{
	const std::string raw = GetParam().raw;
	host.ide_drive("hda", raw, raw, raw, raw);
	EXPECT_EQ(parse("hda"), 0);
	for (const auto &field : {dev->media, dev->model, dev->sn, dev->rev})
		EXPECT_STREQ(field, GetParam().field);
}

INSTANTIATE_TEST_SUITE_P(Texts, Field,
                         ::testing::Values(field_row_t{"AB12", "AB12"}, field_row_t{"  AB12  ", "AB12"},
                                           field_row_t{" \tA B\t ", "A B"}, field_row_t{"A#B", "A"},
                                           field_row_t{"A\rB", "A"}, field_row_t{"A\nB", "A"},
                                           field_row_t{"#AB", ""}, field_row_t{"     ", ""}));

TEST_F(ProcideTest, SerialNumberFillsItsField)
{
	host.ide_drive("hda", "disk", "MODEL", "12345678901234567890", "87654321");
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(text_of(dev->sn), "12345678901234567890");
	EXPECT_EQ(text_of(dev->rev), "87654321");
}

TEST_F(ProcideTest, SerialNumberEndsAtANul)
{
	host.ide_drive("hda", "disk", "MODEL", std::string("AB\0CD", 5),
	               std::string("12\0"
	                           "34",
	                           5));
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(text_of(dev->sn), "AB");
	EXPECT_EQ(text_of(dev->rev), "12");
}

TEST_F(ProcideTest, LongTextsAreTrimmedThenCutAt63)
{
	host.ide_drive("hda", std::string(70, 'm'), std::string(60, ' ') + std::string(70, 'M'));
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(text_of(dev->media), std::string(63, 'm'));
	EXPECT_EQ(text_of(dev->model), std::string(63, 'M'));
}

TEST_F(ProcideTest, OnlyTheFirstLinesCount)
{
	host.ide_drive("hda", "disk\ncdrom", "MODEL\nOTHER");
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(text_of(dev->media), "disk");
	EXPECT_EQ(text_of(dev->model), "MODEL");
}

struct identify_row_t {
	const char *what;
	std::string text;
	int result;
};

class Identify : public ProcideTest, public ::testing::WithParamInterface<identify_row_t>
{
};

TEST_P(Identify, File)
{
	host.ide_drive("hda", "disk").file("/proc/ide/ide0/hda/identify", GetParam().text);
	EXPECT_EQ(parse("hda"), GetParam().result) << GetParam().what;
	if (GetParam().result == 0)
		EXPECT_EQ(dev->tag, 1);
	else
		EXPECT_TRUE(is_zero(*dev)) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
	Files, Identify,
	::testing::Values(identify_row_t{"32 lines", identify_lines(32), 0},
                          identify_row_t{"33 lines", identify_lines(33), -1},
                          identify_row_t{"40 lines", identify_lines(40), -1},
                          identify_row_t{"33rd line empty", identify_lines(32) + "\n\n", 0},
                          identify_row_t{"33rd line short", identify_lines(32) + "4142\n", -1},
                          identify_row_t{"fewer lines", identify_lines(3), 0}, identify_row_t{"empty", "", 0},
                          identify_row_t{"empty lines between",
                                         identify_lines(16) + "\n \t\n# words\n" + identify_lines(16), 0},
                          identify_row_t{"seven words",
                                         identify_lines(2) + "0 1 2 3 4 5 6\n" + identify_lines(29), -1},
                          identify_row_t{"no words", identify_lines(2) + "none\n", -1},
                          identify_row_t{"carriage return inside", "0 1 2 3\r4 5 6 7\n", -1},
                          identify_row_t{"bad eighth word", "0 1 2 3 4 5 6 x\n", -1},
                          identify_row_t{"nine words", "0 1 2 3 4 5 6 7 8\n", 0},
                          identify_row_t{"words cut by a comment", "0 1 2 3 4 5 6 # 7\n", -1},
                          identify_row_t{"indented", "\t0 1 2 3 4 5 6 7 \n", 0}));

TEST_F(ProcideTest, MissingIdentifyLinesAreZero)
{
	// Only the first line and a half of the serial number's characters are there.
	host.ide_drive("hda", "disk").file("/proc/ide/ide0/hda/identify", identify_lines(2));
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(text_of(dev->sn), "EFGHIJKLMNOP");
	EXPECT_EQ(text_of(dev->rev), "");
}

TEST_F(ProcideTest, EmptyLinesTakeNoRow)
{
	host.ide_drive("hda", "disk")
		.file("/proc/ide/ide0/hda/identify", "\n" + identify_lines(1) + "\n" + identify_lines(1));
	EXPECT_EQ(parse("hda"), 0);
	EXPECT_EQ(text_of(dev->sn), "EFGHIJKLMNOP");
}

TEST_F(ProcideTest, MissingFilesFail)
{
	for (const char *file : {"identify", "media", "model"}) {
		host.remove("/proc/ide").ide_drive("hda", "disk");
		ASSERT_EQ(parse("hda"), 0);
		host.remove(std::string("/proc/ide/ide0/hda/") + file);
		expect_failure("hda");
	}
	expect_failure("hdb");
}

TEST_F(ProcideTest, EmptyMediaOrModelFails)
{
	for (const char *file : {"media", "model"}) {
		host.remove("/proc/ide").ide_drive("hda", "disk");
		host.file(std::string("/proc/ide/ide0/hda/") + file, "");
		expect_failure("hda");
	}
}

TEST_F(ProcideTest, NamesInsideAndOutsideTheRule)
{
	for (const char *name : {"hda", "hdt", "hda1", "hda16", "hdt16"}) {
		host.ide_drive(name, "disk");
		EXPECT_EQ(parse(name), 0) << name;
		EXPECT_EQ(text_of(dev->name), name);
	}
	for (const char *name : {"hda17", "hda0", "hdu", "hd", "hdaa", "sda", "ide1", "hdA"}) {
		host.ide_drive(name, "disk");
		expect_failure(name);
	}
	expect_failure("");
}

TEST_F(ProcideTest, NameMayHoldADirectory)
{
	host.ide_drive("hda", "disk");
	EXPECT_EQ(parse("ide0/hda"), 0);
	EXPECT_EQ(text_of(dev->name), "ide0/hda");
	expect_failure("ide1/hda");
	expect_failure("hda/ide0");
}

TEST_F(ProcideTest, FilterOfASingleDrive)
{
	host.ide_drive("hda", "cdrom", "MODEL", "SERIAL", "1.0");
	filter_calls_t calls = {0, 0};
	EXPECT_EQ(parse("hda", counting_filter, &calls), 0);
	EXPECT_EQ(calls.calls, 1);
	EXPECT_TRUE(is_zero(*dev));
	const filter_func_t check = [](const void *item, const void *) {
		const auto *candidate = static_cast<const procide_dev_t *>(item);
		EXPECT_STREQ(candidate->name, "hda");
		EXPECT_STREQ(candidate->media, "cdrom");
		EXPECT_STREQ(candidate->model, "MODEL");
		EXPECT_STREQ(candidate->sn, "SERIAL");
		EXPECT_STREQ(candidate->rev, "1.0");
		return -5;
	};
	EXPECT_EQ(parse("hda", check), 0);
	EXPECT_EQ(dev->tag, 1);
}

TEST_F(ProcideTest, FailedDriveIsNotFiltered)
{
	filter_calls_t calls = {1, 0};
	EXPECT_EQ(parse("hda", counting_filter, &calls), -1);
	EXPECT_EQ(calls.calls, 0);
}

TEST_F(ProcideTest, ListsDrivesInAlphabeticalOrder)
{
	host.ide_drive("hdc", "cdrom", "CD").ide_drive("hda", "disk").ide_drive("hdb", "disk");
	host.directory("/proc/ide/ide1").file("/proc/ide/drivers", "ide-disk version 1.18\n");
	host.file("/proc/ide/piix", "").directory("/proc/ide/hdu").directory("/proc/ide/hda17");
	EXPECT_EQ(parse_all(), 0);
	expect_shape(*list, 3, 3, 8);
	EXPECT_THAT(names(), ::testing::ElementsAre("hda", "hdb", "hdc"));
	EXPECT_EQ(text_of(list->item[2].media), "cdrom");
	EXPECT_EQ(text_of(list->item[2].model), "CD");
}

TEST_F(ProcideTest, NoDirectoryAndNoDrives)
{
	EXPECT_EQ(parse_all(), -1);
	expect_shape(*list, 0, 0, 8);
	host.directory("/proc/ide/ide0");
	list = soiled<procide_devlist_t>();
	EXPECT_EQ(parse_all(), 0);
	expect_shape(*list, 0, 0, 8);
}

TEST_F(ProcideTest, UnreadableDriveIsLeftOutAndTold)
{
	host.ide_drive("hda", "disk").ide_drive("hdb", "disk").ide_drive("hdc", "disk");
	host.remove("/proc/ide/ide0/hdb/identify");
	EXPECT_EQ(parse_all(), -1);
	expect_shape(*list, 2, 2, 8);
	EXPECT_THAT(names(), ::testing::ElementsAre("hda", "hdc"));
}

TEST_F(ProcideTest, NinthDriveFindsNoRoom)
{
	for (char letter = 'a'; letter <= 'h'; letter++)
		host.ide_drive(std::string("hd") + letter, "disk");
	EXPECT_EQ(parse_all(), 0);
	expect_shape(*list, 8, 8, 8);
	host.ide_drive("hdi", "disk").ide_drive("hdj", "disk");
	list = soiled<procide_devlist_t>();
	filter_calls_t calls = {1, 0};
	EXPECT_EQ(parse_all(counting_filter, &calls), -1);
	EXPECT_EQ(calls.calls, 10);
	expect_shape(*list, 8, 8, 8);
	EXPECT_STREQ(list->item[7].name, "hdh");
}

TEST_F(ProcideTest, DroppedDrivesAreNoError)
{
	for (char letter = 'a'; letter <= 'j'; letter++)
		host.ide_drive(std::string("hd") + letter, letter < 'c' ? "cdrom" : "disk");
	char media[] = "disk";
	const filter_func_t same_media = [](const void *item, const void *arg) -> int {
		return strcmp(static_cast<const procide_dev_t *>(item)->media,
		              static_cast<const char *>(arg)) == 0;
	};
	EXPECT_EQ(parse_all(same_media, media), 0);
	expect_shape(*list, 8, 8, 8);
	EXPECT_STREQ(list->item[0].name, "hdc");
}

TEST_F(ProcideTest, DisplaySkipsFreeSlots)
{
	host.ide_drive("hda", "disk", "ONE", "S1", "R1").ide_drive("hdb", "disk", "TWO", "S2", "R2");
	host.ide_drive("hdc", "cdrom", "THREE", "", "R3");
	ASSERT_EQ(parse_all(), 0);
	list->item[1].tag = 0;
	const std::string expected = dump_head(*list) +
	                             printed("[*0 1  %08x*] hda disk ONE\n\t\tS1 R1\n", low32(list.get())) +
	                             printed("[*2 1  %08x*] hdc cdrom THREE\n\t\t R3\n", low32(list.get()));
	EXPECT_EQ(stderr_of([&] { display_procide_devlist(list.get()); }), expected);
}

} // namespace
