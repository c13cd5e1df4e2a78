// SPDX-License-Identifier: Apache-2.0
// What the query of arrays makes of a host.
#include "case_host.h"
#include "failing_calls.h"
#include "queries.h"

#include <gmock/gmock.h>

#include <set>

namespace
{

// Words of a line, each with its value; what is absent is left out.
class Line
{
public:
	Line &add(const char *name, const char *text)
	{
		if (text)
			line_ << ' ' << name << '=' << text;
		return *this;
	}
	Line &add(const char *name, long long value)
	{
		if (value != BLOCK_ABSENT)
			line_ << ' ' << name << '=' << value;
		return *this;
	}
	std::string text() const { return line_.str() + "\n"; }

private:
	std::ostringstream line_;
};

std::string told(const block_array &array)
{
	Line line;
	line.add("uuid", array.uuid).add("metadata", array.metadata).add("level", array.level);
	line.add("state", array.state).add("wanted", array.wanted).add("active", array.active);
	line.add("failed", array.failed).add("spare", array.spare).add("degraded", array.degraded);
	line.add("size", array.size).add("chunk", array.chunk_size).add("layout", array.layout);
	line.add("sync", array.sync_action).add("done", array.sync_done).add("of", array.sync_total);
	line.add("speed", array.sync_speed).add("mismatches", array.mismatches);
	line.add("bitmap", array.bitmap).add("consistency", array.consistency);
	std::string text = shown(array.name) + line.text();
	for (const block_member *member = array.members; member; member = member->next) {
		Line words;
		words.add("role", member->role).add("slot", member->slot).add("state", member->state);
		text += "  " + shown(member->name) + words.add("errors", member->errors).text();
	}
	return text;
}

std::string told(const Answer<block_array> &answer)
{
	std::string text;
	for (const block_array *at = answer.first(); at; at = at->next)
		text += told(*at);
	return text;
}

class ArrayCase : public CaseHost, public ::testing::WithParamInterface<Case>
{
};

TEST_P(ArrayCase, IsTold)
{
	describe_and_show(GetParam().text);
	const Answer<block_array> answer(list_arrays);
	EXPECT_EQ(answer.result, 0);
	EXPECT_EQ(told(answer), GetParam().meaning);
}

INSTANTIATE_TEST_SUITE_P(Cases, ArrayCase,
                         ::testing::ValuesIn(read_cases(BLOCK_DIRECTORY "/cases/arrays.cases")),
                         case_test_name);

class Arrays : public CaseHost
{
protected:
	static constexpr char MIRROR[] = "device devices/virtual/block/md0 9:0 2048\n"
					 "  md/array_state = clean\n"
					 "  md/level = raid1\n"
					 "  md/raid_disks = 2\n"
					 "  md/dev-sda/state = in_sync\n"
					 "  md/dev-sda/slot = 0\n"
					 "  md/dev-sdb/state = in_sync\n"
					 "  md/dev-sdb/slot = 1\n";
	const std::string md_ = "sys/devices/virtual/block/md0/md/";
};

TEST_F(Arrays, HaveTheirSizes)
{
	describe_and_show(MIRROR);
	const Answer<block_array> answer(list_arrays);
	ASSERT_EQ(answer.count, 1);
	EXPECT_EQ(answer.first()->record_size, sizeof(block_array));
	ASSERT_NE(answer.first()->members, nullptr);
	EXPECT_EQ(answer.first()->members->record_size, sizeof(block_member));
}

TEST_F(Arrays, WithoutSysfsTheQueryFails)
{
	describe_and_show("");
	errno = 0;
	const Answer<block_array> answer(list_arrays);
	EXPECT_EQ(answer.result, -1);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_EQ(answer.first(), nullptr);
}

// Each attribute in turn is not there, is a folder, is empty, holds noise: the others are told as before.
class BadAttribute : public Arrays, public ::testing::WithParamInterface<const char *>
{
protected:
	void SetUp() override
	{
		describe(std::string(MIRROR) + "  md/metadata_version = 1.2\n"
		                               "  md/degraded = 0\n"
		                               "  md/chunk_size = 65536\n"
		                               "  md/layout = 2\n"
		                               "  md/sync_action = check\n"
		                               "  md/sync_completed = 8 / 16\n"
		                               "  md/sync_speed = 100\n"
		                               "  md/mismatch_cnt = 0\n"
		                               "  md/bitmap/location = +8\n"
		                               "  md/consistency_policy = bitmap\n"
		                               "  md/uuid = 12345678-9abc-def0-1234-56789abcdef0\n"
		                               "  md/dev-sda/errors = 3\n");
	}

	// The words of the good host's answer that this one lacks.
	static std::string lost(const std::string &good)
	{
		const Answer<block_array> answer(list_arrays);
		EXPECT_EQ(answer.result, 0);
		std::istringstream now(told(answer));
		std::istringstream words(good);
		std::string rest;
		std::string other;
		now >> other;
		for (std::string word; words >> word;) {
			if (word == other)
				now >> other;
			else
				rest += " " + word;
		}
		EXPECT_TRUE(now.eof()) << other;
		return rest;
	}

	static std::string good()
	{
		const Answer<block_array> answer(list_arrays);
		return told(answer);
	}
};

TEST_P(BadAttribute, CostsItsOwnFieldsAlone)
{
	const std::string text = GetParam();
	const std::string name = md_ + text.substr(0, text.find(' '));
	const std::string fields = text.substr(text.find(' '));
	show();
	const std::string before = good();

	std::filesystem::remove(host() / name);
	EXPECT_EQ(lost(before), fields) << "not there";
	std::filesystem::create_directories(host() / name);
	EXPECT_EQ(lost(before), fields) << "a folder";
	std::filesystem::remove(host() / name);
	put(name, "\n");
	// Without a word a member is no active one.
	if (text.find("state=in_sync") == std::string::npos) {
		EXPECT_EQ(lost(before), fields) << "empty";
	}
	put(name, std::string(5000, '7'));
	EXPECT_EQ(lost(before), fields) << "longer than any attribute";
}

INSTANTIATE_TEST_SUITE_P(
	Each, BadAttribute,
	::testing::Values("array_state state=clean", "level level=raid1", "raid_disks wanted=2",
                          "metadata_version metadata=1.2", "degraded degraded=0", "chunk_size chunk=65536",
                          "layout layout=2", "sync_action sync=check", "sync_completed done=8 of=16",
                          "sync_speed speed=100", "mismatch_cnt mismatches=0", "bitmap/location bitmap=+8",
                          "consistency_policy consistency=bitmap",
                          "uuid uuid=12345678:9abcdef0:12345678:9abcdef0", "dev-sda/errors errors=3",
                          "dev-sda/state active=2 failed=0 spare=0 role=active state=in_sync"));

TEST_F(Arrays, NumbersThatAreNone)
{
	describe_and_show(MIRROR);
	for (const char *value : {"x", "-1", "2 x", "0x2", "2147483648", "99999999999999999999", "2("}) {
		put(md_ + "chunk_size", value);
		const Answer<block_array> answer(list_arrays);
		EXPECT_EQ(answer.named("md0").chunk_size, BLOCK_ABSENT) << value;
	}
	for (const char *value : {"none", "delayed", "max", "8", "8 /", "8 / ", "8/16", "8 / x", "x / 16",
	                          "-8 / 16", "8 / 16 x", "8 / 99999999999999999999"}) {
		put(md_ + "sync_completed", value);
		const Answer<block_array> answer(list_arrays);
		EXPECT_EQ(answer.named("md0").sync_done, BLOCK_ABSENT) << value;
		EXPECT_EQ(answer.named("md0").sync_total, BLOCK_ABSENT) << value;
	}
}

TEST_F(Arrays, UuidsThatAreNone)
{
	describe_and_show(MIRROR);
	for (const char *value :
	     {"", "12345678", "00000000:00000000:00000000:00000000", "12345678:12345678:12345678:1234567",
	      "12345678:12345678:12345678:123456789", "12345678:12345678:12345678:1234567g",
	      "12345678-12345678-12345678-12345678"}) {
		udev("9:0", std::string("E:MD_UUID=") + value + "\n");
		const Answer<block_array> answer(list_arrays);
		EXPECT_EQ(answer.named("md0").uuid, nullptr) << value;
	}
}

// What the counts say, and the members' names: without a slot one stands behind the others.
std::string members_of(const block_array &array)
{
	Line counts;
	counts.add("active", array.active).add("failed", array.failed).add("spare", array.spare);
	std::set<std::string> names;
	for (const block_member *at = array.members; at; at = at->next)
		names.insert(shown(at->name));
	std::string text = counts.text();
	for (const std::string &name : names)
		text += name + "\n";
	return text;
}

TEST_F(Arrays, AreTrueWhateverCallFails)
{
	describe_and_show(MIRROR);
	udev("9:0", "E:MD_UUID=3aaa0122:29827cfa:5331ad66:ca767371\n");
	const std::string known = " active=2 failed=0 spare=0\nsda\nsdb\n";
	const std::string unknown = "\nsda\nsdb\n";
	walk_failing_calls([&] {
		errno = 0;
		const Answer<block_array> answer(list_arrays);
		if (answer.result != 0) {
			EXPECT_NE(errno, 0);
			EXPECT_EQ(answer.first(), nullptr);
			return;
		}
		EXPECT_EQ(answer.count, 1);
		for (const block_array *at = answer.first(); at; at = at->next) {
			EXPECT_STREQ(at->name, "md0");
			EXPECT_THAT(members_of(*at), testing::AnyOf(known, unknown));
			EXPECT_TRUE(!at->level || shown(at->level) == "raid1");
			EXPECT_TRUE(!at->uuid || shown(at->uuid) == "3aaa0122:29827cfa:5331ad66:ca767371");
		}
	});
}

TEST_F(Arrays, WithoutMemoryFail)
{
	describe_and_show(MIRROR);
	udev("9:0", "E:MD_UUID=3aaa0122:29827cfa:5331ad66:ca767371\n");
	walk_refused_memory(list_arrays, release_list);
}

TEST_F(Arrays, OfAThousandMembersAreWhole)
{
	std::string text = MIRROR;
	for (int i = 2; i < 1000; i++)
		text += "  md/dev-loop" + std::to_string(i) + "/slot = " + std::to_string(1001 - i) +
		        "\n  md/dev-loop" + std::to_string(i) + "/state = in_sync\n";
	describe_and_show(text);
	const Answer<block_array> answer(list_arrays);
	const block_array &array = answer.named("md0");
	EXPECT_EQ(array.active, 1000);
	int slot = 0;
	for (const block_member *at = array.members; at; at = at->next)
		EXPECT_EQ(at->slot, slot++);
	EXPECT_EQ(slot, 1000);
}

} // namespace
