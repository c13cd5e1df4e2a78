// SPDX-License-Identifier: Apache-2.0
// The state of a container, rule by rule.
#include "raid_state.h"

#include <cmath>
#include <gtest/gtest.h>
#include <initializer_list>

namespace
{
enum { FIRST = 0x000000, SECOND = 0x000100, THIRD = 0x000200, FOURTH = 0x000300 };
enum { REBUILD = 3, VERIFY = 7, UNKNOWN_TASK = 6 };
enum { BAD = 0, DONE = 1, RUNNING = 2, SUSPENDED = 3, UNKNOWN_STATE = 4 };

constexpr auto OPTIMAL = container_state_t::OPTIMAL;
constexpr auto DEGRADED = container_state_t::DEGRADED;
constexpr auto REBUILDING = container_state_t::REBUILDING;
constexpr auto FAILED = container_state_t::FAILED;
constexpr auto UNKNOWN = container_state_t::UNKNOWN;

// Four disks in use, no task, and whatever containers a test makes.
class state_test : public testing::Test
{
protected:
	state_test()
	{
		for (const int at : {FIRST, SECOND, THIRD, FOURTH}) {
			raid_disk_t disk{};
			disk.record.nPosition = at;
			disks.rows.push_back(disk);
		}
	}

	void make(int number, KESTREL_HWRAID_TYPE type, std::initializer_list<int> members)
	{
		raid_container_t row{};
		row.record.nRaidID = number;
		row.record.RaidType = type;
		for (int &slot : row.record.nPosition)
			slot = -1;
		for (const int member : members)
			row.record.nPosition[row.record.nDiskNumber++] = member;
		containers.rows.push_back(row);
	}

	void use(int at, KESTREL_HWRAID_DSK_USAGE usage)
	{
		for (raid_disk_t &disk : disks.rows) {
			if (disk.record.nPosition == at)
				disk.record.Usage = usage;
		}
	}
	void fail(int at) { use(at, KESTREL_HWRAID_DSK_USAGE_OFFLINE); }
	void take_out(int at)
	{
		std::vector<raid_disk_t> left;
		for (const raid_disk_t &disk : disks.rows) {
			if (disk.record.nPosition != at)
				left.push_back(disk);
		}
		disks.rows = left;
	}

	void run(int function, int container, int state, float done)
	{
		raid_task_t row{};
		row.record = {101, function, done, container, state, nullptr};
		tasks.rows.push_back(row);
	}

	raid_state_t first() const { return states_of({containers, disks, tasks}).at(0); }
	container_state_t state() const { return first().state; }

	raid_list_t<raid_container_t> containers;
	raid_list_t<raid_disk_t> disks;
	raid_list_t<raid_task_t> tasks;
};

TEST_F(state_test, words)
{
	EXPECT_EQ(words_of({OPTIMAL, -1}), "optimal");
	EXPECT_EQ(words_of({DEGRADED, -1}), "degraded");
	EXPECT_EQ(words_of({REBUILDING, 450}), "rebuilding 45.0 %");
	EXPECT_EQ(words_of({REBUILDING, 7}), "rebuilding 0.7 %");
	EXPECT_EQ(words_of({REBUILDING, -1}), "rebuilding");
	EXPECT_EQ(words_of({FAILED, -1}), "failed");
	EXPECT_EQ(words_of({UNKNOWN, -1}), "unknown");
}

TEST_F(state_test, every_type_is_optimal_with_all_its_disks)
{
	make(0, KESTREL_HWRAID_TYPE_RAID0, {FIRST, SECOND});
	make(1, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	make(2, KESTREL_HWRAID_TYPE_RAID5, {FIRST, SECOND, THIRD});
	make(3, KESTREL_HWRAID_TYPE_VOLUME, {FIRST});
	make(4, KESTREL_HWRAID_TYPE_RAID10, {24, 25});
	make(24, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	make(25, KESTREL_HWRAID_TYPE_RAID1, {THIRD, FOURTH});
	for (const raid_state_t &found : states_of({containers, disks, tasks})) {
		EXPECT_EQ(found.state, OPTIMAL);
		EXPECT_EQ(found.rebuilt_permille, -1);
	}
}

TEST_F(state_test, no_member_is_no_answer)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {});
	EXPECT_EQ(state(), UNKNOWN);
}

TEST_F(state_test, type_that_is_not_known_or_changes)
{
	for (const int type :
	     std::initializer_list<int>{KESTREL_HWRAID_TYPE_UNKNOWN, KESTREL_HWRAID_TYPE_RECONF, 9}) {
		containers.rows.clear();
		make(0, type, {FIRST, SECOND});
		EXPECT_EQ(state(), UNKNOWN);
	}
	fail(FIRST);
	EXPECT_EQ(state(), UNKNOWN);
	// Whatever it is, it cannot do without any disk.
	fail(SECOND);
	EXPECT_EQ(state(), FAILED);
}

TEST_F(state_test, stripe_and_volume_bear_no_loss)
{
	for (const KESTREL_HWRAID_TYPE type : {KESTREL_HWRAID_TYPE_RAID0, KESTREL_HWRAID_TYPE_VOLUME}) {
		containers.rows.clear();
		make(0, type, {FIRST, SECOND, THIRD});
		fail(SECOND);
		EXPECT_EQ(state(), FAILED);
	}
}

TEST_F(state_test, mirror_bears_all_losses_but_the_last)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND, THIRD});
	fail(FIRST);
	EXPECT_EQ(state(), DEGRADED);
	fail(SECOND);
	EXPECT_EQ(state(), DEGRADED);
	fail(THIRD);
	EXPECT_EQ(state(), FAILED);
}

TEST_F(state_test, raid_5_bears_one_loss)
{
	make(0, KESTREL_HWRAID_TYPE_RAID5, {FIRST, SECOND, THIRD, FOURTH});
	fail(FOURTH);
	EXPECT_EQ(state(), DEGRADED);
	fail(FIRST);
	EXPECT_EQ(state(), FAILED);
}

TEST_F(state_test, members_that_the_controller_does_not_list_any_more_are_lost)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST});
	make(1, KESTREL_HWRAID_TYPE_RAID5, {FIRST, SECOND});
	make(2, KESTREL_HWRAID_TYPE_RAID5, {FIRST});
	EXPECT_EQ(states_of({containers, disks, tasks})[0].state, DEGRADED);
	EXPECT_EQ(states_of({containers, disks, tasks})[1].state, DEGRADED);
	EXPECT_EQ(states_of({containers, disks, tasks})[2].state, FAILED);
	fail(FIRST);
	EXPECT_EQ(state(), FAILED);
}

TEST_F(state_test, what_a_disk_is_used_for)
{
	struct case_t {
		KESTREL_HWRAID_DSK_USAGE usage;
		container_state_t state;
	};
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	for (const case_t &c : {case_t{KESTREL_HWRAID_DSK_USAGE_INITED, OPTIMAL},
	                        {KESTREL_HWRAID_DSK_USAGE_UNINIT, DEGRADED},
	                        {KESTREL_HWRAID_DSK_USAGE_DETACHED, DEGRADED},
	                        {KESTREL_HWRAID_DSK_USAGE_DOS, DEGRADED},
	                        {KESTREL_HWRAID_DSK_USAGE_OFFLINE, DEGRADED},
	                        {KESTREL_HWRAID_DSK_USAGE_UNOWNED, UNKNOWN},
	                        {KESTREL_HWRAID_DSK_USAGE_UNKNOWN, UNKNOWN},
	                        {6, UNKNOWN}}) {
		use(SECOND, c.usage);
		EXPECT_EQ(state(), c.state) << c.usage;
	}
}

TEST_F(state_test, member_that_is_no_disk)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	disks.rows[1].record.DeviceType = KESTREL_HWRAID_DSK_TYPE_PROCESSOR - 1;
	EXPECT_EQ(state(), DEGRADED);
	disks.rows[1].record.DeviceType = KESTREL_HWRAID_DSK_TYPE_UNKNOWN - 1;
	EXPECT_EQ(state(), UNKNOWN);
}

TEST_F(state_test, member_that_is_not_among_the_disks)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	take_out(SECOND);
	EXPECT_EQ(state(), DEGRADED);
	// It may stand in the part of the list that nobody has seen.
	disks.failed = true;
	EXPECT_EQ(state(), UNKNOWN);
	fail(FIRST);
	EXPECT_EQ(state(), DEGRADED);
}

TEST_F(state_test, never_optimal_without_the_disks_or_the_tasks)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	tasks.failed = true;
	EXPECT_EQ(state(), UNKNOWN);
	fail(FIRST);
	EXPECT_EQ(state(), DEGRADED);
	fail(SECOND);
	EXPECT_EQ(state(), FAILED);
	tasks.failed = false;
	disks.failed = true;
	disks.rows.clear();
	EXPECT_EQ(state(), UNKNOWN);
}

TEST_F(state_test, more_members_than_a_record_holds)
{
	make(0, KESTREL_HWRAID_TYPE_RAID0, {FIRST, SECOND});
	containers.rows[0].record.nDiskNumber = 3;
	EXPECT_EQ(state(), UNKNOWN);
}

TEST_F(state_test, rebuild)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	run(REBUILD, 0, RUNNING, 0.45F);
	EXPECT_EQ(state(), REBUILDING);
	EXPECT_EQ(first().rebuilt_permille, 450);
	// What it is rebuilt from may be gone as well.
	fail(FIRST);
	EXPECT_EQ(state(), REBUILDING);
	fail(SECOND);
	EXPECT_EQ(state(), FAILED);
	EXPECT_EQ(first().rebuilt_permille, -1);
}

TEST_F(state_test, how_far_a_rebuild_is)
{
	struct case_t {
		float done;
		int permille;
	};
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	for (const case_t &c :
	     {case_t{0, 0}, {0.0014F, 1}, {0.999F, 999}, {1, 1000}, {7, 1000}, {-1, -1}, {NAN, -1}}) {
		tasks.rows.clear();
		run(REBUILD, 0, RUNNING, c.done);
		EXPECT_EQ(first().rebuilt_permille, c.permille) << c.done;
	}
}

TEST_F(state_test, rebuild_that_does_not_run)
{
	struct case_t {
		int state;
		container_state_t wanted;
	};
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	for (const case_t &c : {case_t{BAD, DEGRADED},
	                        {DONE, OPTIMAL},
	                        {SUSPENDED, DEGRADED},
	                        {UNKNOWN_STATE, UNKNOWN},
	                        {-1, UNKNOWN}}) {
		tasks.rows.clear();
		run(REBUILD, 0, c.state, 0.5F);
		EXPECT_EQ(state(), c.wanted) << c.state;
		EXPECT_EQ(first().rebuilt_permille, -1);
	}
}

TEST_F(state_test, other_tasks)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	run(VERIFY, 0, RUNNING, 0.5F);
	run(REBUILD, 1, RUNNING, 0.5F);
	run(-1, 1, RUNNING, 0.5F);
	EXPECT_EQ(state(), OPTIMAL);
	// It may be a rebuild.
	run(UNKNOWN_TASK, 0, RUNNING, 0.5F);
	EXPECT_EQ(state(), UNKNOWN);
	tasks.rows.clear();
	run(-1, 0, RUNNING, 0.5F);
	EXPECT_EQ(state(), UNKNOWN);
}

class members_test : public state_test
{
protected:
	members_test()
	{
		make(2, KESTREL_HWRAID_TYPE_RAID10, {24, 25});
		make(24, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
		make(25, KESTREL_HWRAID_TYPE_RAID1, {THIRD, FOURTH});
	}
};

TEST_F(members_test, degraded)
{
	fail(FOURTH);
	EXPECT_EQ(state(), DEGRADED);
}

TEST_F(members_test, failed)
{
	fail(THIRD);
	fail(FOURTH);
	EXPECT_EQ(state(), FAILED);
}

TEST_F(members_test, one_disk_of_each)
{
	fail(FIRST);
	fail(FOURTH);
	EXPECT_EQ(state(), DEGRADED);
}

TEST_F(members_test, rebuilding)
{
	run(REBUILD, 25, RUNNING, 0.45F);
	EXPECT_EQ(state(), REBUILDING);
	EXPECT_EQ(first().rebuilt_permille, 450);
	// The one that is least far tells how far all of it is.
	run(REBUILD, 24, RUNNING, 0.2F);
	EXPECT_EQ(first().rebuilt_permille, 200);
	// Where nobody rebuilds the other one, that is what is to be done.
	tasks.rows.pop_back();
	fail(FIRST);
	EXPECT_EQ(state(), DEGRADED);
	EXPECT_EQ(first().rebuilt_permille, -1);
}

TEST_F(members_test, unknown)
{
	use(FIRST, KESTREL_HWRAID_DSK_USAGE_UNKNOWN);
	EXPECT_EQ(state(), UNKNOWN);
	fail(FOURTH);
	EXPECT_EQ(state(), DEGRADED);
}

TEST_F(members_test, member_that_is_not_listed)
{
	containers.rows.pop_back();
	EXPECT_EQ(state(), UNKNOWN);
}

TEST_F(members_test, containers_that_are_members_of_each_other)
{
	containers.rows.clear();
	make(24, KESTREL_HWRAID_TYPE_RAID10, {25, 24});
	make(25, KESTREL_HWRAID_TYPE_RAID10, {24, 25});
	EXPECT_EQ(state(), UNKNOWN);
}
} // namespace

// ---- members that are not listed any more ----

namespace
{
constexpr long long GIB = 1LL << 30;

class pieces_test : public state_test
{
protected:
	void hold(long long size) { containers.rows.back().total_size = size; }
	void piece(int container, long long size)
	{
		raid_piece_t row{};
		row.record.bRaidID = container;
		row.record.nSize = size;
		pieces.rows.push_back(row);
	}
	container_state_t with_pieces() const
	{
		return states_of({containers, disks, tasks, &pieces}).at(0).state;
	}

	raid_list_t<raid_piece_t> pieces;
};
} // namespace

TEST_F(pieces_test, RaidFiveOfFourWithThreeListedIsDegraded)
{
	make(0, KESTREL_HWRAID_TYPE_RAID5, {FIRST, SECOND, THIRD});
	hold(30 * GIB);
	for (int i = 0; i < 3; i++)
		piece(0, 10 * GIB);
	EXPECT_EQ(with_pieces(), DEGRADED);
	fail(SECOND);
	EXPECT_EQ(with_pieces(), FAILED);
}

TEST_F(pieces_test, AllAreThereAlsoWhereSizesAreRounded)
{
	make(0, KESTREL_HWRAID_TYPE_RAID5, {FIRST, SECOND, THIRD});
	// 33.84 and 67.68 GB, as the tool tells them.
	hold(677 * GIB / 10);
	for (int i = 0; i < 3; i++)
		piece(0, 338 * GIB / 10);
	EXPECT_EQ(with_pieces(), OPTIMAL);
	// 136.4 and 272.8 GB: without digits behind the point.
	hold(273 * GIB);
	for (raid_piece_t &row : pieces.rows)
		row.record.nSize = 136 * GIB;
	EXPECT_EQ(with_pieces(), OPTIMAL);
}

TEST_F(pieces_test, LostMemberThatIsListedIsCountedOnce)
{
	make(0, KESTREL_HWRAID_TYPE_RAID5, {FIRST, SECOND, THIRD});
	hold(20 * GIB);
	piece(0, 10 * GIB);
	piece(0, 10 * GIB);
	fail(THIRD);
	EXPECT_EQ(with_pieces(), DEGRADED);
}

TEST_F(pieces_test, StripeThatLacksOneIsFailed)
{
	make(0, KESTREL_HWRAID_TYPE_RAID0, {FIRST, SECOND});
	hold(30 * GIB);
	piece(0, 10 * GIB);
	piece(0, 10 * GIB);
	EXPECT_EQ(with_pieces(), FAILED);
	hold(20 * GIB);
	EXPECT_EQ(with_pieces(), OPTIMAL);
}

TEST_F(pieces_test, PiecesOfOthersAndOfMirrorsTellNothing)
{
	make(0, KESTREL_HWRAID_TYPE_RAID0, {FIRST, SECOND});
	hold(30 * GIB);
	piece(1, 10 * GIB);
	EXPECT_EQ(with_pieces(), OPTIMAL);
	containers.rows.clear();
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	hold(30 * GIB);
	piece(0, 10 * GIB);
	EXPECT_EQ(with_pieces(), OPTIMAL);
}

TEST_F(pieces_test, WithoutTheirListNothingIsOptimal)
{
	make(0, KESTREL_HWRAID_TYPE_RAID1, {FIRST, SECOND});
	pieces.failed = true;
	EXPECT_EQ(with_pieces(), UNKNOWN);
}
