// SPDX-License-Identifier: Apache-2.0
// What the query of mounts makes of a host.
#include "case_host.h"
#include "failing_calls.h"
#include "queries.h"

#include <time.h>

namespace
{

std::string bytes(long long value)
{
	return value == BLOCK_ABSENT ? "-" : std::to_string(value);
}

std::string names(const block_text *list)
{
	std::string text;
	for (const block_text *at = list; at; at = at->next)
		text += (text.empty() ? "" : ",") + std::string(at->text);
	return text;
}

// One line a record; what is absent is left out, or stands as "-".
std::string told(const block_mount &mount)
{
	std::ostringstream text;
	const bool is_swap = shown(mount.kind) == "swap";
	text << mount.kind << ' ' << (is_swap ? shown(mount.source) : shown(mount.mount_point));
	if (!is_swap)
		text << ' ' << mount.id << '/' << mount.parent_id << ' ' << mount.major << ':' << mount.minor
		     << " source=" << shown(mount.source) << " root=" << shown(mount.root);
	text << " type=" << shown(mount.type) << " devices=" << names(mount.devices);
	if (mount.shadowed == 1)
		text << " shadowed";
	text << " space=" << bytes(mount.total) << '/' << bytes(mount.used) << '/' << bytes(mount.available);
	if (is_swap)
		text << " priority=" << mount.priority;
	return text.str() + "\n";
}

std::string told(const Answer<block_mount> &answer)
{
	std::string text;
	for (const block_mount *at = answer.first(); at; at = at->next)
		text += told(*at);
	return text;
}

class MountCase : public CaseHost, public ::testing::WithParamInterface<Case>
{
};

TEST_P(MountCase, IsTold)
{
	describe_and_show(GetParam().text);
	const Answer<block_mount> answer(list_mounts);
	EXPECT_EQ(answer.result, 0);
	EXPECT_EQ(told(answer), GetParam().meaning);
}

INSTANTIATE_TEST_SUITE_P(Cases, MountCase,
                         ::testing::ValuesIn(read_cases(BLOCK_DIRECTORY "/cases/mounts.cases")),
                         case_test_name);
INSTANTIATE_TEST_SUITE_P(Shadowed, MountCase,
                         ::testing::ValuesIn(read_cases(BLOCK_DIRECTORY "/cases/shadowed.cases")),
                         case_test_name);
INSTANTIATE_TEST_SUITE_P(Space, MountCase,
                         ::testing::ValuesIn(read_cases(BLOCK_DIRECTORY "/cases/space.cases")),
                         case_test_name);

class Mounts : public CaseHost
{
};

TEST_F(Mounts, HaveEveryField)
{
	describe_and_show("device devices/pci0000:00/ata1/block/sda 8:0 2048\n"
	                  "file proc/self/mountinfo\n"
	                  "| 22 1 8:0 /@home / rw,relatime - ext4 /dev/sda rw,errors=remount-ro\n"
	                  "file proc/swaps\n"
	                  "| /dev/sdb partition 8 4 -2\n"
	                  "host mount / 4096 100 40 30\n");
	const Answer<block_mount> answer(list_mounts);
	ASSERT_EQ(answer.count, 2);
	const block_mount &mount = *answer.first();
	EXPECT_EQ(mount.record_size, sizeof mount);
	EXPECT_STREQ(mount.kind, "mount");
	EXPECT_EQ(mount.id, 22);
	EXPECT_EQ(mount.parent_id, 1);
	EXPECT_EQ(mount.major, 8);
	EXPECT_EQ(mount.minor, 0);
	ASSERT_NE(mount.devices, nullptr);
	EXPECT_STREQ(mount.devices->text, "sda");
	EXPECT_EQ(mount.devices->next, nullptr);
	EXPECT_STREQ(mount.source, "/dev/sda");
	EXPECT_STREQ(mount.type, "ext4");
	EXPECT_STREQ(mount.root, "/@home");
	EXPECT_STREQ(mount.mount_point, "/");
	EXPECT_STREQ(mount.options, "rw,relatime");
	EXPECT_STREQ(mount.super_options, "rw,errors=remount-ro");
	EXPECT_EQ(mount.shadowed, 0);
	EXPECT_EQ(mount.total, 409600);
	EXPECT_EQ(mount.used, 245760);
	EXPECT_EQ(mount.available, 122880);
	EXPECT_EQ(mount.priority, BLOCK_ABSENT);

	const block_mount &swap = *mount.next;
	EXPECT_STREQ(swap.kind, "swap");
	EXPECT_EQ(swap.id, BLOCK_ABSENT);
	EXPECT_EQ(swap.parent_id, BLOCK_ABSENT);
	EXPECT_EQ(swap.major, BLOCK_ABSENT);
	EXPECT_EQ(swap.minor, BLOCK_ABSENT);
	EXPECT_EQ(swap.devices, nullptr);
	EXPECT_STREQ(swap.source, "/dev/sdb");
	EXPECT_STREQ(swap.type, "partition");
	EXPECT_EQ(swap.root, nullptr);
	EXPECT_EQ(swap.mount_point, nullptr);
	EXPECT_EQ(swap.options, nullptr);
	EXPECT_EQ(swap.super_options, nullptr);
	EXPECT_EQ(swap.shadowed, BLOCK_ABSENT);
	EXPECT_EQ(swap.total, 8192);
	EXPECT_EQ(swap.used, 4096);
	EXPECT_EQ(swap.available, BLOCK_ABSENT);
	EXPECT_EQ(swap.priority, -2);
}

TEST_F(Mounts, WithoutTheTableTheQueryFails)
{
	describe_and_show("device devices/pci0000:00/ata1/block/sda 8:0 2048\n");
	errno = 0;
	const Answer<block_mount> answer(list_mounts);
	EXPECT_EQ(answer.result, -1);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_EQ(answer.first(), nullptr);
	EXPECT_EQ(answer.count, 0);
}

// What must be the same whatever could not be asked, and what may be absent then.
struct told_t {
	std::string surely;
	std::string devices;
	std::string space;
};

told_t parts_of(const block_mount &mount)
{
	block_mount without = mount;
	without.devices = nullptr;
	without.total = without.used = without.available = BLOCK_ABSENT;
	return {told(without), names(mount.devices),
	        bytes(mount.total) + "/" + bytes(mount.used) + "/" + bytes(mount.available)};
}

static constexpr char OF_ALL_KINDS[] =
	"device devices/pci0000:00/ata1/block/sda 8:0 4096\n"
	"device devices/pci0000:00/ata2/block/sdb 8:16 4096\n"
	// It lacks its state: such a one is looked at once more.
	"device devices/virtual/block/dm-1 254:1 4096\n"
	"device devices/virtual/block/dm-0 254:0 4096\n"
	"  dm/suspended = 1\n"
	"  slaves/sda/dev = 8:0\n"
	"link dev/mapper/data ../sda\n"
	"host device /dev/sda\n"
	"host number 8:0\n"
	"link sys/fs/btrfs/0b1d/devices/sda ../../../../devices/pci0000:00/ata1/block/sda\n"
	"link sys/fs/btrfs/0b1d/devices/sdb ../../../../devices/pci0000:00/ata2/block/sdb\n"
	"file proc/self/mountinfo\n"
	"| 22 1 0:31 / / rw - btrfs /dev/mapper/data rw\n"
	"| 23 22 0:32 / /run rw - tmpfs tmpfs rw\n"
	"file proc/swaps\n"
	"| /dev/dm-0 partition 4 0 -2\n"
	"| /swap file 4 0 -2\n"
	"host mount / 4096 1000 900\n";

TEST_F(Mounts, AreTrueWhateverCallFails)
{
	describe_and_show(OF_ALL_KINDS);
	std::vector<told_t> good;
	{
		const Answer<block_mount> answer(list_mounts);
		for (const block_mount *at = answer.first(); at; at = at->next)
			good.push_back(parts_of(*at));
		ASSERT_EQ(good.size(), 4U);
		ASSERT_EQ(good[0].devices, "sda,sdb");
		ASSERT_EQ(good[0].space, "4096000/409600/3686400");
	}
	walk_failing_calls([&] {
		errno = 0;
		const Answer<block_mount> answer(list_mounts);
		if (answer.result != 0) {
			EXPECT_NE(errno, 0);
			EXPECT_EQ(answer.first(), nullptr);
			return;
		}
		size_t count = 0;
		for (const block_mount *at = answer.first(); at && count < good.size(); at = at->next) {
			const told_t now = parts_of(*at);
			const told_t &then = good[count++];
			EXPECT_TRUE(now.devices == then.devices || now.devices.empty()) << now.devices;
			EXPECT_TRUE(now.space == then.space || now.space == "-/-/-") << now.space;
			if (at->id != BLOCK_ABSENT) {
				EXPECT_EQ(now.surely, then.surely);
			}
		}
		EXPECT_EQ(static_cast<size_t>(answer.count), good.size());
	});
}

TEST_F(Mounts, WithoutMemoryFail)
{
	describe_and_show(OF_ALL_KINDS);
	walk_refused_memory(list_mounts, release_list);
}

TEST_F(Mounts, OpenNoDeviceAndNoMountPoint)
{
	describe_and_show(OF_ALL_KINDS);
	const Watch watch([](const std::string &path) {
		EXPECT_TRUE(path[0] != '/' || path.compare(0, 5, "/sys/") == 0 ||
		            path == "/proc/self/mountinfo" || path == "/proc/swaps")
			<< path;
	});
	EXPECT_EQ(Answer<block_mount>(list_mounts).result, 0);
}

// Asked is once for a file system and a source, however many mounts have it.
class CallsOfMounts : public Mounts
{
protected:
	long calls(int mounts, const std::string &line)
	{
		std::string text;
		for (int i = 1; i <= mounts; i++)
			text += std::to_string(i) + " 1 " + line + "\n";
		put("proc/self/mountinfo", "1 0 0:30 / / rw - tmpfs a rw\n" + text);
		replay_fail_call(0, 0);
		replay_count_calls();
		const Answer<block_mount> answer(list_mounts);
		return replay_calls();
	}
};

TEST_F(CallsOfMounts, DoNotGrowWithTheMountsOfOneFileSystem)
{
	describe_and_show("device devices/pci0000:00/ata1/block/sda 8:0 4096\n"
	                  "link sys/fs/btrfs/1-2/devices/sda ../../../../devices/pci0000:00/ata1/block/sda\n"
	                  "host mount /x 4096 1000 900\n");
	for (const char *line : {"8:0 / /x rw - ext4 /dev/sda rw", "0:31 / /x rw - btrfs /dev/gone rw",
	                         "0:31 / /x rw - btrfs /dev/sda rw"})
		EXPECT_EQ(calls(20, line), calls(2, line)) << line;
}

// Many shapes of a table, in which an algorithm could lose its way or its time.
class ManyMounts : public Mounts
{
protected:
	static constexpr int COUNT = 10000;

	using line_t = std::string (*)(int at);

	// How many of them are told as shadowed.
	int shadowed(line_t line)
	{
		std::string text = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";
		for (int i = 2; i <= COUNT; i++)
			text += line(i) + " rw - ext4 /dev/sda1 rw\n";
		describe("device devices/pci0000:00/ata1/block/sda/sda1 8:1 2048\n"
		         "host mount / 4096 100 40 30\n");
		put("proc/self/mountinfo", text);
		show();
		const clock_t begin = clock();
		const Answer<block_mount> answer(list_mounts);
		const clock_t spent = clock() - begin;
		EXPECT_EQ(answer.count, COUNT);
		// Processor time: many times what it takes, counted for coverage too. Who compares each with
		// each takes minutes.
		EXPECT_LT(spent, 15 * CLOCKS_PER_SEC);
		int count = 0;
		for (const block_mount *at = answer.first(); at; at = at->next)
			count += at->shadowed;
		return count;
	}

	static std::string number(int value) { return std::to_string(value); }
};

TEST_F(ManyMounts, BesideEachOther)
{
	EXPECT_EQ(shadowed([](int at) { return number(at) + " 1 8:1 / /m" + number(at); }), 0);
}

TEST_F(ManyMounts, OnTopOfEachOther)
{
	EXPECT_EQ(shadowed([](int at) { return number(at) + " " + number(at - 1) + " 8:1 / /mnt"; }),
	          COUNT - 2);
}

TEST_F(ManyMounts, BelowAsManyOnTopOfEachOther)
{
	EXPECT_EQ(shadowed([](int at) {
			  return at <= COUNT / 2
		                         ? number(at) + " " + number(at - 1) + " 8:1 / /mnt"
		                         : number(at) + " " + number(COUNT / 2) + " 8:1 / /mnt/" + number(at);
		  }),
	          COUNT / 2 - 2);
}

TEST_F(ManyMounts, InEachOther)
{
	EXPECT_EQ(shadowed([](int at) {
			  std::string path;
			  for (int i = 0; i <= at % 1000; i++)
				  path += "/d";
			  return number(at) + " " + (at % 1000 == 0 ? "1" : number(at - 1)) +
		                 " 8:" + number(at / 1000) + " / /" + number(at / 1000) + path;
		  }),
	          0);
}

TEST_F(ManyMounts, AtOnePlaceOfOneParent)
{
	EXPECT_EQ(shadowed([](int at) { return number(at) + " 1 8:1 / /mnt"; }), COUNT - 2);
}

TEST_F(ManyMounts, InARing)
{
	EXPECT_EQ(shadowed([](int at) {
			  return number(at) + " " + number(at == 2 ? COUNT : at - 1) + " 8:1 / /mnt";
		  }),
	          COUNT - 1);
}

TEST_F(ManyMounts, OfOneId)
{
	EXPECT_EQ(shadowed([](int at) { return "2 1 8:1 / /m" + number(at); }), 0);
}

} // namespace
