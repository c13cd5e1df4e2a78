// SPDX-License-Identifier: Apache-2.0
// The kernel's SCSI registry: one device's block of lines, and the devices of /proc/scsi/scsi.
#include "host.h"

#include "hdd/sal/src/linux/procscsi.h"

namespace
{

const char *const HOST_LINE = "Host: scsi0 Channel: 00 Id: 01 Lun: 00\n";
const char *const VENDOR_LINE = "  Vendor: ACME     Model: EXAMPLE DISK     Rev: 1.02\n";
const char *const TYPE_LINE = "  Type:   Direct-Access                    ANSI  SCSI revision: 02\n";

class BlockTest : public ::testing::Test
{
protected:
	int parse(const std::string &first, const std::string &second, const std::string &third,
	          filter_func_t filter = nullptr, void *arg = nullptr)
	{
		char lines[3][LINE_SIZE] = {};
		int i = 0;
		for (const std::string *line : {&first, &second, &third})
			strcpy(lines[i++], line->c_str());
		dev = soiled<procscsi_dev_t>();
		return parse_procscsi_dev(dev.get(), filter, arg, lines);
	}
	std::unique_ptr<procscsi_dev_t> dev;
};

TEST_F(BlockTest, ReadsADevice)
{
	EXPECT_EQ(parse(HOST_LINE, VENDOR_LINE, TYPE_LINE), 0);
	EXPECT_EQ(dev->tag, 1);
	EXPECT_EQ(dev->index, 0);
	EXPECT_EQ(dev->parent, nullptr);
	EXPECT_EQ(dev->idlun.host, 0);
	EXPECT_EQ(dev->idlun.channel, 0);
	EXPECT_EQ(dev->idlun.id, 1);
	EXPECT_EQ(dev->idlun.lun, 0);
	EXPECT_EQ(text_of(dev->vendor), "ACME");
	EXPECT_EQ(text_of(dev->model), "EXAMPLE DISK");
	EXPECT_EQ(text_of(dev->rev), "1.02");
}

struct address_row_t {
	const char *line;
	int result;
	int tag;
	idlun_t idlun; // host, channel, id, lun
};

class Address : public BlockTest, public ::testing::WithParamInterface<address_row_t>
{
};

TEST_P(Address, OfTheFirstLine)
{
	const address_row_t &row = GetParam();
	EXPECT_EQ(parse(row.line, VENDOR_LINE, TYPE_LINE), row.result) << row.line;
	if (row.tag == 0) {
		EXPECT_TRUE(is_zero(*dev)) << row.line;
		return;
	}
	EXPECT_EQ(dev->tag, 1);
	EXPECT_EQ(memcmp(&dev->idlun, &row.idlun, sizeof row.idlun), 0) << row.line;
}

INSTANTIATE_TEST_SUITE_P(
	Good, Address,
	::testing::Values(
		address_row_t{"Host: scsi1 Channel: 02 Id: 03 Lun: 04\n", 0, 1, {1, 2, 3, 4}},
		address_row_t{"Host: scsi12 Channel: 0 Id: 15 Lun: 007", 0, 1, {12, 0, 15, 7}},
		address_row_t{"\tHost:\tscsi3\tChannel:\t1 Id:  2 Lun: 5 \n", 0, 1, {3, 1, 2, 5}},
		address_row_t{"Host: scsi0 Channel: 00 Id: 01 Lun: 00 more\n", 0, 1, {0, 0, 1, 0}},
		address_row_t{"Host: scsi255 Channel: 255 Id: 255 Lun: 255\n", 0, 1, {255, 255, 255, 255}},
		address_row_t{"Host: scsi257 Channel: 256 Id: 258 Lun: 511\n", 0, 1, {1, 0, 2, 255}}));

INSTANTIATE_TEST_SUITE_P(NoDevice, Address,
                         ::testing::Values(address_row_t{"", 0, 0, {}}, address_row_t{"\n", 0, 0, {}},
                                           address_row_t{"Attached devices:\n", 0, 0, {}},
                                           address_row_t{"Host: scsi0 Channel: 00 Id: 01 Lun:\n", 0, 0, {}}));

INSTANTIATE_TEST_SUITE_P(
	Malformed, Address,
	::testing::Values(address_row_t{"Most: scsi0 Channel: 00 Id: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: ide0 Channel: 00 Id: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi Channel: 00 Id: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi0x Channel: 00 Id: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi-1 Channel: 00 Id: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi0 Chanel: 00 Id: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi0 Channel: 0x Id: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi0 Channel: 00 ID: 01 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi0 Channel: 00 Id: -1 Lun: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi0 Channel: 00 Id: 01 Lan: 00\n", -1, 0, {}},
                          address_row_t{"Host: scsi0 Channel: 00 Id: 01 Lun: +1\n", -1, 0, {}},
                          address_row_t{"Host: scsi0 Channel: 00 Id: 01 Lun: 99999999999\n", -1, 0, {}},
                          address_row_t{"Host: scsi4294967296 Channel: 00 Id: 01 Lun: 00\n", -1, 0, {}}));

struct vendor_row_t {
	const char *line;
	int result;
	const char *vendor;
	const char *model;
	const char *rev;
};

class Vendor : public BlockTest, public ::testing::WithParamInterface<vendor_row_t>
{
};

TEST_P(Vendor, OfTheSecondLine)
{
	const vendor_row_t &row = GetParam();
	EXPECT_EQ(parse(HOST_LINE, row.line, TYPE_LINE), row.result) << row.line;
	if (row.result != 0) {
		EXPECT_TRUE(is_zero(*dev)) << row.line;
		return;
	}
	EXPECT_EQ(text_of(dev->vendor), row.vendor) << row.line;
	EXPECT_EQ(text_of(dev->model), row.model) << row.line;
	EXPECT_EQ(text_of(dev->rev), row.rev) << row.line;
}

INSTANTIATE_TEST_SUITE_P(
	Good, Vendor,
	::testing::Values(
		//            0123456789012345678901234567890123456789012345678901234567890
		vendor_row_t{"  Vendor: ABCDEFGH Model: ABCDEFGHIJKLMNOP Rev: 1234\n", 0, "ABCDEFGH",
                             "ABCDEFGHIJKLMNOP", "1234"},
		vendor_row_t{"  Vendor: ABCDEFGHxModel: ABCDEFGHIJKLMNOPxRev: 1234\n", 0, "ABCDEFGH",
                             "ABCDEFGHIJKLMNOP", "1234"},
		vendor_row_t{"  Vendor:   A B    Model: \t A  B           Rev: 1234\n", 0, "A B", "A  B",
                             "1234"},
		vendor_row_t{"  Vendor:          Model:                  Rev:     \n", 0, "", "", ""},
		vendor_row_t{"  Vendor:          Model:                  Rev: ", 0, "", "", ""},
		vendor_row_t{"  Vendor: AB#DEFGH Model: AB\rDEFGHIJKLMNOP Rev: 12#4\n", 0, "AB", "AB", "12"},
		vendor_row_t{"  Vendor: A        Model: B                Rev: 1234567890123\n", 0, "A", "B",
                             "1234567890"},
		// Blanks before the revision stay.
		vendor_row_t{"  Vendor: A        Model: B                Rev:  1.0\t \n", 0, "A", "B",
                             " 1.0"},
		vendor_row_t{"  Vendor: A        Model: B                Rev: 12", 0, "A", "B", "12"}));

INSTANTIATE_TEST_SUITE_P(
	Malformed, Vendor,
	::testing::Values(
		vendor_row_t{"", -1, "", "", ""}, vendor_row_t{"\n", -1, "", "", ""},
		vendor_row_t{" Vendor: ACME     Model: DISK             Rev: 1.0\n", -1, "", "", ""},
		vendor_row_t{"   Vendor: ACME    Model: DISK             Rev: 1.0\n", -1, "", "", ""},
		vendor_row_t{"  vendor: ACME     Model: DISK             Rev: 1.0\n", -1, "", "", ""},
		vendor_row_t{"  Vendor: ACME    Model: DISK             Rev: 1.0\n", -1, "", "", ""},
		vendor_row_t{"  Vendor: ACME     Modem: DISK             Rev: 1.0\n", -1, "", "", ""},
		vendor_row_t{"  Vendor: ACME     Model: DISK            Rev: 1.0\n", -1, "", "", ""},
		vendor_row_t{"  Vendor: ACME     Model: DISK             Ref: 1.0\n", -1, "", "", ""},
		vendor_row_t{"  Vendor: ACME     Model: DISK\n", -1, "", "", ""},
		vendor_row_t{"  Vendor: ACME     Model: DISK             Rev:\n", -1, "", "", ""},
		vendor_row_t{"  Vendor: \n", -1, "", "", ""}));

struct type_row_t {
	const char *line;
	int result;
	const char *media;
};

class Type : public BlockTest, public ::testing::WithParamInterface<type_row_t>
{
};

TEST_P(Type, OfTheThirdLine)
{
	const type_row_t &row = GetParam();
	EXPECT_EQ(parse(HOST_LINE, VENDOR_LINE, row.line), row.result) << row.line;
	if (row.result == 0)
		EXPECT_EQ(text_of(dev->media), row.media) << row.line;
	else
		EXPECT_TRUE(is_zero(*dev)) << row.line;
}

INSTANTIATE_TEST_SUITE_P(
	Lines, Type,
	::testing::Values(type_row_t{"  Type:   Direct-Access\n", 0, "Direct-Access"},
                          type_row_t{"  Type:   CD-ROM    \t \n", 0, "CD-ROM"},
                          type_row_t{"  Type:   Direct-Access                    ANSI SCSI\n", 0,
                                     "Direct-Access"},
                          type_row_t{"  Type:   ABCDEFGHIJKLMNOPQRSTUVWXYZ012345678\n", 0,
                                     "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345"},
                          type_row_t{"  Type:    Blank\n", 0, " Blank"},
                          type_row_t{"  Type:   AB#CD\n", 0, "AB"}, type_row_t{"  Type:   \n", 0, ""},
                          type_row_t{"  Type:   ", 0, ""}, type_row_t{"  Type:  Direct-Access\n", -1, ""},
                          type_row_t{"  Type:\n", -1, ""}, type_row_t{" Type:   Direct-Access\n", -1, ""},
                          type_row_t{"", -1, ""}, type_row_t{"  type:   Direct-Access\n", -1, ""}));

TEST_F(BlockTest, FilterSeesTheFinishedDevice)
{
	filter_calls_t calls = {0, 0};
	EXPECT_EQ(parse(HOST_LINE, VENDOR_LINE, TYPE_LINE, counting_filter, &calls), 0);
	EXPECT_EQ(calls.calls, 1);
	EXPECT_TRUE(is_zero(*dev));
	const filter_func_t check = [](const void *item, const void *) {
		const auto *candidate = static_cast<const procscsi_dev_t *>(item);
		EXPECT_EQ(candidate->idlun.id, 1);
		EXPECT_STREQ(candidate->vendor, "ACME");
		EXPECT_STREQ(candidate->model, "EXAMPLE DISK");
		EXPECT_STREQ(candidate->rev, "1.02");
		EXPECT_STREQ(candidate->media, "Direct-Access");
		return 2;
	};
	EXPECT_EQ(parse(HOST_LINE, VENDOR_LINE, TYPE_LINE, check), 0);
	EXPECT_EQ(dev->tag, 1);
}

class ProcscsiTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		list = soiled<procscsi_devlist_t>();
	}
	void table(const std::string &text) { host.file("/proc/scsi/scsi", text); }
	int parse(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		return parse_procscsi_devlist(list.get(), filter, arg);
	}
	std::vector<int> ids() const
	{
		std::vector<int> ids;
		for (const procscsi_dev_t &item : list->item)
			if (item.tag)
				ids.push_back(item.idlun.id);
		return ids;
	}
	std::unique_ptr<procscsi_devlist_t> list;
};

std::string devices(int count)
{
	std::string text = SCSI_HEADING;
	for (int id = 0; id < count; id++)
		text += scsi_block(id);
	return text;
}

TEST_F(ProcscsiTest, ListsTheDevices)
{
	table(SCSI_HEADING + scsi_block(4, "ACME", "ONE") + scsi_block(2, "OTHER", "TWO", "9", "CD-ROM"));
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 2, 2, 32);
	EXPECT_THAT(ids(), ::testing::ElementsAre(4, 2));
	EXPECT_EQ(text_of(list->item[1].vendor), "OTHER");
	EXPECT_EQ(text_of(list->item[1].model), "TWO");
	EXPECT_EQ(text_of(list->item[1].rev), "9");
	EXPECT_EQ(text_of(list->item[1].media), "CD-ROM");
}

TEST_F(ProcscsiTest, TablesWithoutDevices)
{
	for (const char *text : {"", "Attached devices:\n", "Attached devices: none\n", "\n\n",
	                         "Hosts: scsi0 Channel: 00 Id: 01 Lun: 00\n", "Host: scsi0\n"}) {
		table(text);
		list = soiled<procscsi_devlist_t>();
		EXPECT_EQ(parse(), 0) << text;
		expect_shape(*list, 0, 0, 32);
	}
}

TEST_F(ProcscsiTest, MissingTable)
{
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ProcscsiTest, OtherLinesBetweenBlocksAreSkipped)
{
	table(scsi_block(1) + "a line of more than eight words that says nothing\n\n" + scsi_block(2));
	EXPECT_EQ(parse(), 0);
	EXPECT_THAT(ids(), ::testing::ElementsAre(1, 2));
}

TEST_F(ProcscsiTest, MalformedBlockIsSkippedAndTold)
{
	std::string bad = scsi_block(2);
	bad.replace(bad.find("Model: "), 7, "Modem: ");
	table(SCSI_HEADING + scsi_block(1) + bad + scsi_block(3));
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 2, 2, 32);
	EXPECT_THAT(ids(), ::testing::ElementsAre(1, 3));
}

TEST_F(ProcscsiTest, BlockTakesThreeLinesEvenWhenMalformed)
{
	table(std::string(HOST_LINE) + scsi_block(2) + scsi_block(3));
	EXPECT_EQ(parse(), -1);
	EXPECT_THAT(ids(), ::testing::ElementsAre(3));
}

TEST_F(ProcscsiTest, EndInsideABlockIsMalformed)
{
	for (const std::string &rest : {std::string(HOST_LINE), std::string(HOST_LINE) + VENDOR_LINE}) {
		table(scsi_block(1) + rest);
		list = soiled<procscsi_devlist_t>();
		EXPECT_EQ(parse(), -1);
		EXPECT_THAT(ids(), ::testing::ElementsAre(1));
	}
}

TEST_F(ProcscsiTest, ListHolds32)
{
	table(devices(32));
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 32, 32, 32);
	table(devices(35));
	list = soiled<procscsi_devlist_t>();
	filter_calls_t calls = {1, 0};
	EXPECT_EQ(parse(counting_filter, &calls), -1);
	EXPECT_EQ(calls.calls, 35);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(list->item[31].idlun.id, 31);
}

TEST_F(ProcscsiTest, DroppedDevicesAreNoError)
{
	table(devices(35));
	int first = 5;
	const filter_func_t from = [](const void *item, const void *arg) -> int {
		return static_cast<const procscsi_dev_t *>(item)->idlun.id >= *static_cast<const int *>(arg);
	};
	EXPECT_EQ(parse(from, &first), 0);
	expect_shape(*list, 30, 30, 32);
	EXPECT_EQ(list->item[0].idlun.id, 5);
}

TEST_F(ProcscsiTest, DisplaySkipsFreeSlots)
{
	table(scsi_block(1) + scsi_block(2) + "Host: scsi1 Channel: 02 Id: 03 Lun: 04\n" + VENDOR_LINE +
	      TYPE_LINE);
	ASSERT_EQ(parse(), 0);
	list->item[1].tag = 0;
	const unsigned self = low32(list.get());
	EXPECT_EQ(stderr_of([&] { display_procscsi_devlist(list.get()); }),
	          dump_head(*list) +
	                  printed("[*0 1  %08x*] (0, 0, 1, 0) ACME DISK 1.0 Direct-Access\n", self) +
	                  printed("[*2 1  %08x*] (1, 2, 3, 4) ACME EXAMPLE DISK 1.02 Direct-Access\n", self));
}

// Lines that a caller has filled by hand: old bytes behind the text, or no end of text at all.
TEST_F(BlockTest, NothingBehindTheTextCounts)
{
	char lines[3][LINE_SIZE] = {"Host: scsi0 Channel: 00 Id: 01 Lun: 00\n", "  Vendor: A\n",
	                            "  Type:   Direct-Access\n"};
	strcpy(lines[1] + 19, "Model: STALE");
	strcpy(lines[1] + 43, "Rev: 9");
	auto stale = soiled<procscsi_dev_t>();
	EXPECT_EQ(parse_procscsi_dev(stale.get(), nullptr, nullptr, lines), -1);
	EXPECT_TRUE(is_zero(*stale));
}

TEST_F(BlockTest, LinesWithoutAnEndAreReadToTheirLimit)
{
	char lines[3][LINE_SIZE];
	memset(lines, 'x', sizeof lines);
	memcpy(lines[0], "Host: scsi0 Channel: 00 Id: 01 Lun: 00 ", 39);
	memcpy(lines[1], "  Vendor: ACME     Model: DISK             Rev: 1.0 ", 52);
	memcpy(lines[2], "  Type:   Direct-Access ", 24);
	auto endless = soiled<procscsi_dev_t>();
	EXPECT_EQ(parse_procscsi_dev(endless.get(), nullptr, nullptr, lines), 0);
	EXPECT_EQ(text_of(endless->vendor), "ACME");
	EXPECT_EQ(text_of(endless->media), "Direct-Access " + repeat("x", 18));
}

} // namespace
