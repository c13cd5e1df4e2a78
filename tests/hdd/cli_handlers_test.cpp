// SPDX-License-Identifier: Apache-2.0
// The tree of the diagnostic command line: its handlers, their order, their words and counts.
#include "host.h"

#include "diskscout.h"
#include "hdd/cli.h"
#include "hdd/exe/cli.h"
#include "hdd/sal/src/linux/cli.h"

#include <algorithm>
#include <limits.h>

namespace
{

struct leaf_t {
	const char *name;
	const char *words; // as the help line shows them
	cli_func_t handler;
};

const leaf_t LEAVES[] = {
	{"cli_0", "fnode froot ftail input rand", cli_0},
	{"cli_linux",
         "exec mdsb mdspeed(default/max) mdstat mkdev mkdir mtab(dev/mnt) procblk procide procscsi "
         "procscsihost "
         "raidtab scsiadd scsiremove scsishuffle scsisn uptime xml xmlnew",
         cli_linux},
	{"cli_1", "hdgeo hdsize idlun mbr part parttab sector volspace xxid", cli_1},
	{"clifunc_exe", "exe_cdrom exe_disk exe_part exe_vol", clifunc_exe},
	{"clifunc_hdd", "stdisk stcdrom stpart sttest", clifunc_hdd},
};

struct handler_t {
	const char *name;
	cli_func_t handler;
	std::vector<int> leaves; // below it, in their order
};

const handler_t HANDLERS[] = {
	{"cli_hdd", cli_hdd, {0, 1, 2, 3, 4}},
	{"cli_exe", cli_exe, {0, 1, 2, 3}},
	{"cli_sal", cli_sal, {0, 1, 2}},
	{"cli_os", cli_os, {1}},
	{"cli_0", cli_0, {0}},
	{"cli_linux", cli_linux, {1}},
	{"cli_1", cli_1, {2}},
	{"clifunc_exe", clifunc_exe, {3}},
	{"clifunc_hdd", clifunc_hdd, {4}},
};

// Every word, its leaf, and the numbers of words that it takes, itself included.
struct word_t {
	const char *word;
	int leaf;
	std::vector<int> counts;
};

const word_t WORDS[] = {
	{"fnode", 0, {2}},      {"froot", 0, {2}},    {"ftail", 0, {2}},      {"input", 0, {1}},
	{"rand", 0, {4}},       {"exec", 1, {2}},     {"mdsb", 1, {2, 3}},    {"mdspeed", 1, {1, 2, 3}},
	{"mdstat", 1, {1}},     {"mkdev", 1, {3, 4}}, {"mkdir", 1, {2}},      {"mtab", 1, {1, 3}},
	{"procblk", 1, {1, 2}}, {"procide", 1, {1}},  {"procscsi", 1, {1}},   {"procscsihost", 1, {1}},
	{"raidtab", 1, {2}},    {"scsiadd", 1, {5}},  {"scsiremove", 1, {5}}, {"scsishuffle", 1, {1}},
	{"scsisn", 1, {2}},     {"uptime", 1, {1}},   {"hdgeo", 2, {2}},      {"hdsize", 2, {2}},
	{"idlun", 2, {2}},      {"mbr", 2, {2}},      {"part", 2, {2}},       {"parttab", 2, {3}},
	{"sector", 2, {3}},     {"volspace", 2, {2}}, {"xxid", 2, {1}},       {"exe_cdrom", 3, {1}},
	{"exe_disk", 3, {1}},   {"exe_part", 3, {2}}, {"exe_vol", 3, {1}},    {"stdisk", 4, {1}},
	{"stcdrom", 4, {1}},    {"stpart", 4, {1}},   {"sttest", 4, {2}},
};

bool contains(const std::vector<int> &numbers, int wanted)
{
	return std::find(numbers.begin(), numbers.end(), wanted) != numbers.end();
}

class CliHandlers : public HostTest
{
protected:
	// "result matched" and what was printed. What stood in matched before does not count.
	std::string run(cli_func_t handler, const std::vector<std::string> &line, int start = 0)
	{
		std::vector<std::string> words = line;
		std::vector<char *> argv;
		for (std::string &word : words)
			argv.push_back(word.data());
		argv.push_back(nullptr);
		std::string text;
		for (const int before : {0, 5, -1, INT_MAX}) {
			int matched = before;
			int result = -2;
			const std::string output = stderr_of([&] {
				result =
					handler(static_cast<int>(words.size()), argv.data(), start, &matched);
			});
			const std::string now = number(result) + " " + number(matched) + "\n" + output;
			if (!text.empty()) {
				EXPECT_EQ(now, text) << before;
			}
			text = now;
		}
		return text;
	}
};

TEST_F(CliHandlers, HelpListsTheLeaves)
{
	for (const handler_t &row : HANDLERS) {
		std::string expected = "0 " + number(static_cast<long>(row.leaves.size())) + "\n";
		for (const int leaf : row.leaves)
			expected += std::string(LEAVES[leaf].name) + ": " + LEAVES[leaf].words + "\n";
		EXPECT_EQ(run(row.handler, {"help"}), expected) << row.name;
		EXPECT_EQ(run(row.handler, {"help", "me"}), expected) << row.name;
		EXPECT_EQ(run(row.handler, {"program", "help"}, 1), expected) << row.name;
	}
}

TEST_F(CliHandlers, CliidNamesTheLeaves)
{
	for (const handler_t &row : HANDLERS) {
		std::string expected = "0 " + number(static_cast<long>(row.leaves.size())) + "\n";
		for (const int leaf : row.leaves)
			expected += std::string(LEAVES[leaf].name) + "\n";
		EXPECT_EQ(run(row.handler, {"cliid"}), expected) << row.name;
		EXPECT_EQ(run(row.handler, {"cliid", "xml"}), expected) << row.name;
	}
}

TEST_F(CliHandlers, WithoutAWordNothingMatches)
{
	for (const handler_t &row : HANDLERS) {
		EXPECT_EQ(run(row.handler, {}), "0 0\n") << row.name;
		EXPECT_EQ(run(row.handler, {"help"}, 1), "0 0\n") << row.name;
		EXPECT_EQ(run(row.handler, {"program", "help"}, 2), "0 0\n") << row.name;
		EXPECT_EQ(run(row.handler, {"xxid"}, 7), "0 0\n") << row.name;
	}
}

TEST_F(CliHandlers, UnknownWords)
{
	for (const handler_t &row : HANDLERS) {
		for (const char *word : {"xml",           "xmlnew",  "nonsense",   "",
		                         "Help",          "HELP",    "helpme",     "cliids",
		                         "fnod",          "fnodex",  "UPTIME",     "mdspeed(default/max)",
		                         "mtab(dev/mnt)", "default", "max",        "dev",
		                         "clear",         "hwraid",  "cli_0",      "clifunc_hdd",
		                         "exe",           "st",      "fnode froot"})
			EXPECT_EQ(run(row.handler, {word}), "0 0\n") << row.name << " " << word;
	}
}

// A word is known to its own leaf and to the nodes above it, and to nobody else.
TEST_F(CliHandlers, WordsOfOtherLeaves)
{
	for (const handler_t &row : HANDLERS) {
		for (const word_t &word : WORDS) {
			if (contains(row.leaves, word.leaf))
				continue;
			std::vector<std::string> line(static_cast<size_t>(word.counts[0]), "1");
			line[0] = word.word;
			EXPECT_EQ(run(row.handler, line), "0 0\n") << row.name << " " << word.word;
		}
	}
	EXPECT_TRUE(host.log().empty());
}

TEST_F(CliHandlers, WrongNumberOfWordsMatchesAndFails)
{
	for (const handler_t &row : HANDLERS) {
		for (const word_t &word : WORDS) {
			for (int count = 1; count <= 7 && contains(row.leaves, word.leaf); count++) {
				if (contains(word.counts, count))
					continue;
				std::vector<std::string> line(static_cast<size_t>(count), "1");
				line[0] = word.word;
				EXPECT_EQ(run(row.handler, line), "-1 1\n")
					<< row.name << " " << word.word << " " << count;
			}
		}
	}
	EXPECT_TRUE(host.log().empty());
}

TEST_F(CliHandlers, EveryWordIsInItsHelpLine)
{
	for (const word_t &word : WORDS) {
		const std::string line = std::string(" ") + LEAVES[word.leaf].words + " ";
		const std::string name = std::string(" ") + word.word;
		EXPECT_TRUE(line.find(name + " ") != std::string::npos ||
		            line.find(name + "(") != std::string::npos)
			<< word.word;
	}
}

// One command of each leaf, through every node above it.
TEST_F(CliHandlers, CommandsRun)
{
	host.file("/proc/uptime", "350.25 1200.00\n");
	host.table("device /dev/sdb\n\tSCSI_IOCTL_GET_IDLUN 0x01020304 0\n");
	host.show();
	for (const cli_func_t handler : {cli_hdd, cli_exe, cli_sal, cli_0})
		EXPECT_EQ(run(handler, {"program", "ftail", "/dev/sda12"}, 1), "0 1\n12\n");
	for (const cli_func_t handler : {cli_hdd, cli_exe, cli_sal, cli_os, cli_linux})
		EXPECT_EQ(run(handler, {"uptime"}), "0 1\nuptime 350\n");
	for (const cli_func_t handler : {cli_hdd, cli_exe, cli_sal, cli_1})
		EXPECT_EQ(run(handler, {"idlun", "/dev/sdb"}), "0 1\nIDLUN(1, 2, 4, 3)\n");
}

TEST_F(CliHandlers, CommandsFail)
{
	for (const cli_func_t handler : {cli_hdd, cli_exe, cli_sal, cli_0})
		EXPECT_EQ(run(handler, {"rand", "1", "2", "x"}), "-1 1\n");
	for (const cli_func_t handler : {cli_hdd, cli_exe, cli_sal, cli_os, cli_linux})
		EXPECT_EQ(run(handler, {"mdspeed"}), "-1 1\n");
	for (const cli_func_t handler : {cli_hdd, cli_exe, cli_sal, cli_1})
		EXPECT_EQ(run(handler, {"mbr", "/dev/none"}), "-1 1\n");
}

TEST_F(CliHandlers, QueriesRun)
{
	host.file("/etc/mtab", "");
	const std::string counters =
		printed("MEMORY_COUNTER    hdd    : %d\nMEMORY_COUNTER    hwraid : 0\n", memory_counter_hdd);
	static const struct {
		const char *word;
		const char *kind;
	} rows[] = {{"stdisk", "DISK"}, {"stcdrom", "CDROM"}, {"stpart", "PART"}};
	for (const auto &row : rows) {
		for (const cli_func_t handler : {cli_hdd, clifunc_hdd})
			EXPECT_EQ(run(handler, {row.word}), "0 1\n" + counters + std::string(60, '*') + " " +
			                                            row.kind + " (end/0)\n" + counters)
				<< row.word;
	}
	for (const cli_func_t handler : {cli_hdd, clifunc_hdd})
		EXPECT_EQ(run(handler, {"sttest", "0"}), "0 1\n" + counters + counters);
}

} // namespace
