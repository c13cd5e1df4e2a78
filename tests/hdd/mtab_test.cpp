// SPDX-License-Identifier: Apache-2.0
// The mount table, /etc/mtab, through a pipe and straight from the file.
#include "host.h"

#include "hdd/sal/src/linux/mtab.h"
#include "replay/replay.h"

#include <filesystem>
#include <signal.h>
#include <stdlib.h>
#include <sys/time.h>

namespace
{

std::string mounts(int count, const char *source = "/dev/sd")
{
	std::string text;
	for (int i = 0; i < count; i++)
		text += printed("%s%d /mnt/%d ext3 rw 0 0\n", source, i, i);
	return text;
}

class MtabTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		list = soiled<mtab_mntlist_t>();
	}
	void mtab(const std::string &text) { host.file("/etc/mtab", text); }
	int parse(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		return parse_mtab_mntlist(list.get(), filter, arg);
	}
	std::unique_ptr<mtab_mntlist_t> list;
};

TEST_F(MtabTest, CopiesSourceDirectoryAndType)
{
	mtab("/dev/hda1 / ext3 rw,errors=remount-ro 0 1\nproc /proc proc rw 0 0\n/dev/hdc /cdrom iso9660 ro "
	     "0 0\n");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 3, 3, 32);
	EXPECT_EQ(text_of(list->item[0].devpath), "/dev/hda1");
	EXPECT_EQ(text_of(list->item[0].mntpath), "/");
	EXPECT_EQ(text_of(list->item[0].fsname), "ext3");
	EXPECT_EQ(text_of(list->item[1].devpath), "proc");
	EXPECT_EQ(text_of(list->item[1].mntpath), "/proc");
	EXPECT_EQ(text_of(list->item[1].fsname), "proc");
	EXPECT_EQ(text_of(list->item[2].devpath), "/dev/hdc");
}

TEST_F(MtabTest, EscapesAreUndone)
{
	mtab("/dev/sda1 /mnt/my\\040disk ext3 rw 0 0\n");
	EXPECT_EQ(parse(), 0);
	EXPECT_EQ(text_of(list->item[0].mntpath), "/mnt/my disk");
}

TEST_F(MtabTest, CommentsAndEmptyLinesAreNoEntries)
{
	mtab("# mounted\n\n/dev/sda1 / ext3 rw 0 0\n");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 1, 1, 32);
}

TEST_F(MtabTest, EmptyTable)
{
	mtab("");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(MtabTest, TypeIsCutAt63Characters)
{
	mtab("none / " + std::string(63, 'f') + " rw 0 0\nnone /x " + std::string(64, 'f') + " rw 0 0\n");
	EXPECT_EQ(parse(), 0);
	EXPECT_EQ(text_of(list->item[0].fsname), std::string(63, 'f'));
	EXPECT_EQ(text_of(list->item[1].fsname), std::string(63, 'f'));
}

TEST_F(MtabTest, LongPathsAreKept)
{
	const std::string path = "/" + std::string(2000, 'p');
	mtab("/dev/sda1 " + path + " ext3 rw 0 0\n");
	EXPECT_EQ(parse(), 0);
	EXPECT_EQ(text_of(list->item[0].mntpath), path);
}

TEST_F(MtabTest, ListHolds32)
{
	mtab(mounts(32));
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 32, 32, 32);
}

TEST_F(MtabTest, MoreThan32EndTheReading)
{
	mtab(mounts(40));
	filter_calls_t calls = {1, 0};
	EXPECT_EQ(parse(counting_filter, &calls), -2);
	EXPECT_EQ(calls.calls, 33);
	expect_shape(*list, 32, 32, 32);
	EXPECT_STREQ(list->item[31].mntpath, "/mnt/31");
}

TEST_F(MtabTest, DroppedEntriesTakeNoRoom)
{
	mtab(mounts(20, "none") + mounts(32));
	EXPECT_EQ(parse(filter_mtab_mnt_in_dev), 0);
	expect_shape(*list, 32, 32, 32);
	EXPECT_STREQ(list->item[0].devpath, "/dev/sd0");
	mtab(mounts(20, "none") + mounts(33));
	EXPECT_EQ(parse(filter_mtab_mnt_in_dev), -2);
	expect_shape(*list, 32, 32, 32);
}

TEST_F(MtabTest, FullListWithOnlyDroppedEntriesBehindIsNoError)
{
	mtab(mounts(32) + mounts(5, "none"));
	EXPECT_EQ(parse(filter_mtab_mnt_in_dev), 0);
	expect_shape(*list, 32, 32, 32);
}

TEST_F(MtabTest, FilterSeesTheEntryAndTheArgument)
{
	mtab("/dev/hda1 /boot ext2 rw 0 0\n");
	int marker = 0;
	static const void *seen_arg;
	const filter_func_t check = [](const void *item, const void *arg) {
		const auto *entry = static_cast<const mtab_mnt_t *>(item);
		EXPECT_STREQ(entry->devpath, "/dev/hda1");
		EXPECT_STREQ(entry->mntpath, "/boot");
		EXPECT_STREQ(entry->fsname, "ext2");
		seen_arg = arg;
		return 0;
	};
	EXPECT_EQ(parse(check, &marker), 0);
	EXPECT_EQ(seen_arg, &marker);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(MtabTest, CannotBeOpened)
{
	mtab(mounts(3));
	replay_fail_call(1, 0);
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(MtabTest, MissingTable)
{
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 0, 0, 32);
}

// A directory can be opened, but not read.
TEST_F(MtabTest, TableThatCannotBeRead)
{
	host.directory("/etc/mtab");
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 0, 0, 32);
}

// A "cat" of our own, found before the system's.
class MtabCommand : public MtabTest
{
protected:
	void SetUp() override
	{
		MtabTest::SetUp();
		old_path_ = getenv("PATH");
		setenv("PATH", (host.path("/bin") + ":" + old_path_).c_str(), 1);
	}
	void TearDown() override
	{
		setenv("PATH", old_path_.c_str(), 1);
		MtabTest::TearDown();
	}
	void cat(const std::string &script)
	{
		host.file("/bin/cat", "#!/bin/sh\n" + script);
		std::filesystem::permissions(host.path("/bin/cat"), std::filesystem::perms::owner_all);
	}

private:
	std::string old_path_;
};

TEST_F(MtabCommand, EndsWell)
{
	cat("echo /dev/sda1 / ext3 rw 0 0\n");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 1, 1, 32);
}

TEST_F(MtabCommand, FailsBehindWhatItHasTold)
{
	for (const char *ending : {"exit 1", "exit 127", "kill -9 $$"}) {
		cat(printed("echo /dev/sda1 / ext3 rw 0 0\n%s\n", ending));
		EXPECT_EQ(parse(), -1) << ending;
		expect_shape(*list, 1, 1, 32);
	}
}

TEST_F(MtabCommand, ThatIsNotHeardOutMayEndAsItLikes)
{
	cat("for i in 0 1 2 3 4 5 6 7 8 9 a b c d e f g h i j k l m n o p q r s t u v w; do\n"
	    "echo /dev/sda$i /$i ext3 rw 0 0; done\nexit 1\n");
	EXPECT_EQ(parse(), -2);
	expect_shape(*list, 32, 32, 32);
}

// A host that handles a signal, again and again.
class Alarms
{
public:
	Alarms()
	{
		struct sigaction handled = {};
		handled.sa_handler = [](int) {}; // without SA_RESTART
		sigaction(SIGALRM, &handled, &before_);
		set(10000);
	}
	~Alarms()
	{
		set(0);
		signal(SIGALRM, SIG_IGN); // the last one may still be on its way, and would end the process
		sigaction(SIGALRM, &before_, nullptr);
	}

private:
	static void set(int microseconds)
	{
		const itimerval every = {{0, microseconds}, {0, microseconds}};
		setitimer(ITIMER_REAL, &every, nullptr);
	}
	struct sigaction before_;
};

TEST_F(MtabCommand, MayBeWaitedForAcrossSignals)
{
	cat("sleep 0.1\necho /dev/sda1 / ext3 rw 0 0\nsleep 0.1\necho /dev/sda2 /b ext3 rw 0 0\n");
	const Alarms alarms;
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 2, 2, 32);
	EXPECT_STREQ(list->item[1].mntpath, "/b");
}

// The line that is interrupted cannot be had again: that is no table, and no entry is made of the rest.
TEST_F(MtabCommand, SignalInTheMiddleOfALine)
{
	cat("echo /dev/sda1 / ext3 rw 0 0\nprintf '/dev/sda2 /b '\nsleep 0.1\necho ext3 rw 0 0\n");
	const Alarms alarms;
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 1, 1, 32);
}

TEST_F(MtabTest, ReadErrorIsNotTheEnd)
{
	mtab(mounts(3));
	replay_fail_call(3, 0);
	EXPECT_EQ(parse(), -1);
	replay_fail_call(0, 0);
	expect_shape(*list, 1, 1, 32);
}

// A host that ignores the end of its children is told no status.
TEST_F(MtabTest, StatusThatTheHostHasTakenAway)
{
	const auto before = signal(SIGCHLD, SIG_IGN);
	EXPECT_EQ(parse(), 0);
	signal(SIGCHLD, before);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(MtabTest, RunsOneShellCommand)
{
	mtab(mounts(1));
	EXPECT_EQ(parse(), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("shell cat /etc/mtab"));
}

// Both sources must tell the same.
class MtabSource : public MtabTest, public ::testing::WithParamInterface<mtab_source_t>
{
protected:
	// Pulls entries up to a number of them; then `seen` holds them.
	int pull(size_t limit = SIZE_MAX)
	{
		MtabTable table(GetParam());
		mtab_mnt_t mnt = {};
		while (seen.size() < limit && table.next(&mnt))
			seen.push_back(printed("%s %s %s", mnt.devpath, mnt.mntpath, mnt.fsname));
		return table.result();
	}
	std::vector<std::string> seen;
};

INSTANTIATE_TEST_SUITE_P(Sources, MtabSource, ::testing::Values(MTAB_PIPE, MTAB_FILE),
                         [](const auto &source) { return source.param == MTAB_PIPE ? "Pipe" : "File"; });

TEST_P(MtabSource, GivesEveryEntryInOrder)
{
	mtab("/dev/hda1 / ext3 rw 0 0\n# none\n/dev/hda2 /my\\040disk xfs rw 0 0\nnn /n p rw 0 0\n");
	EXPECT_EQ(pull(), 0);
	EXPECT_THAT(seen, ::testing::ElementsAre("/dev/hda1 / ext3", "/dev/hda2 /my disk xfs", "nn /n p"));
}

TEST_P(MtabSource, HasNoBound)
{
	mtab(mounts(100));
	EXPECT_EQ(pull(), 0);
	EXPECT_EQ(seen.size(), 100U);
}

TEST_P(MtabSource, MayBeLeftBeforeTheEnd)
{
	mtab(mounts(100));
	EXPECT_EQ(pull(41), 0);
	EXPECT_EQ(seen.back(), "/dev/sd40 /mnt/40 ext3");
}

TEST_P(MtabSource, StaysAtTheEnd)
{
	mtab(mounts(1));
	MtabTable table(GetParam());
	mtab_mnt_t mnt = {};
	EXPECT_TRUE(table.next(&mnt));
	EXPECT_FALSE(table.next(&mnt));
	EXPECT_FALSE(table.next(&mnt));
	EXPECT_EQ(table.result(), 0);
}

TEST_P(MtabSource, EmptyTable)
{
	mtab("");
	EXPECT_EQ(pull(), 0);
	EXPECT_THAT(seen, ::testing::IsEmpty());
}

TEST_P(MtabSource, MissingTable)
{
	EXPECT_EQ(pull(), -1);
	EXPECT_THAT(seen, ::testing::IsEmpty());
}

TEST_P(MtabSource, ThatCannotBeOpened)
{
	mtab(mounts(3));
	replay_fail_call(1, 0);
	EXPECT_EQ(pull(), -1);
	EXPECT_THAT(seen, ::testing::IsEmpty());
}

TEST_P(MtabSource, OnlyThePipeRunsAShell)
{
	mtab(mounts(3));
	EXPECT_EQ(pull(), 0);
	EXPECT_EQ(host.log().size(), GetParam() == MTAB_PIPE ? 1U : 0U);
}

TEST(MtabFilter, SourceInDev)
{
	static const struct {
		const char *devpath;
		const char *mntpath;
		bool in_dev;
		bool in_mnt;
	} rows[] = {
		{"/dev/sda1", "/mnt/disk", true, true},   {"/dev/", "/mnt/", true, true},
		{"/dev", "/mnt", false, false},           {"/device/x", "/mntx/y", false, false},
		{"proc", "/proc", false, false},          {"", "", false, false},
		{"x/dev/sda1", "/x/mnt/y", false, false}, {"/mnt/x", "/dev/x", false, false},
		{"/dev/sda1", "/", true, false},          {"none", "/mnt/x", false, true},
	};
	auto entry = std::make_unique<mtab_mnt_t>();
	for (const auto &row : rows) {
		strcpy(entry->devpath, row.devpath);
		strcpy(entry->mntpath, row.mntpath);
		for (const char *arg : {static_cast<const char *>(nullptr), "other"}) {
			EXPECT_EQ(filter_mtab_mnt_in_dev(entry.get(), arg) != 0, row.in_dev) << row.devpath;
			EXPECT_EQ(filter_mtab_mnt_in_mnt(entry.get(), arg) != 0, row.in_mnt) << row.mntpath;
		}
	}
}

TEST_F(MtabTest, DisplaySkipsFreeSlots)
{
	mtab("/dev/hda1 / ext3 rw 0 0\nproc /proc proc rw 0 0\n/dev/hda2 /a\\040b vfat rw 0 0\n");
	ASSERT_EQ(parse(), 0);
	list->item[1].tag = 0;
	const unsigned self = low32(list.get());
	EXPECT_EQ(stderr_of([&] { display_mtab_mntlist(list.get()); }),
	          dump_head(*list) + printed("[*0 1  %08x*] dev=/dev/hda1 mnt=/ fs=ext3\n", self) +
	                  printed("[*2 1  %08x*] dev=/dev/hda2 mnt=/a b fs=vfat\n", self));
}

} // namespace
