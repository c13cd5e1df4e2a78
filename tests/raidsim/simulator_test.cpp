// SPDX-License-Identifier: Apache-2.0
// The operations against the simulated controller tool, however it paints and pages: results, records and
// what becomes of the controller's state.
#include "simulated.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_task.h"

namespace
{

INSTANTIATE_TEST_SUITE_P(Ways, Simulator, testing::ValuesIn(WAYS),
                         [](const testing::TestParamInfo<way_t> &row) { return row.param.name; });

TEST_P(Simulator, ListsControllers)
{
	EXPECT_EQ(controllers(), "4\n0|aac0|EXAMPLE 2200S|3|0\n1|aac1|EXAMPLE 2120S|2|1\n"
	                         "2|aac2|EXAMPLE 5400S|3|0\n3|aac3|OTHER|1|-1\n");
	char name[32];
	EXPECT_EQ(Aac_Get_Controller_Name(name, 3), 0);
	EXPECT_STREQ(name, "aac3");
	EXPECT_EQ(Aac_Get_Controller_Name(name, 4), -1);
	EXPECT_STREQ(name, "");
	fault("missing");
	EXPECT_EQ(controllers(), "0\n");
	EXPECT_EQ(Aac_Get_Controller_Name(name, 0), -1);
}

TEST_P(Simulator, ListsContainers)
{
	EXPECT_EQ(containers(), "7\n" + SYSTEM_ROW + VOLUME_ROW + BIG_ROWS + FIVE_ROW + QUARTER_ROW);
	expect_state({});
	EXPECT_EQ(containers("aac1"), "0\n");
}

TEST_P(Simulator, DeletesContainers)
{
	EXPECT_EQ(Aac_Container_Delete(AAC0, 0, 0), -300) << "holds data";
	EXPECT_EQ(Aac_Container_Delete(AAC0, 1, 24), -300) << "a member";
	EXPECT_EQ(Aac_Container_Delete(AAC0, 1, 4), -5);
	expect_state({});
	EXPECT_EQ(Aac_Container_Delete(AAC0, 0, 3), 0);
	state_t left;
	left.containers = SYSTEM_MIRROR + VOLUME + BIG_STRIPE + QUARTER;
	expect_state(left);
	// The members and their task go with it.
	EXPECT_EQ(Aac_Container_Delete(AAC0, 1, 2), 0);
	left.containers = SYSTEM_MIRROR + VOLUME + QUARTER;
	left.tasks = ALL_TASKS.substr(0, ALL_TASKS.find('\n') + 1);
	expect_state(left);
	EXPECT_EQ(Aac_Container_Delete(AAC0, 7, 0), 0);
	left.containers = VOLUME + QUARTER;
	left.tasks = "";
	expect_state(left);
	EXPECT_EQ(containers(), "2\n" + VOLUME_ROW + QUARTER_ROW);
}

TEST_P(Simulator, SetsShowsAndRemovesHotSpares)
{
	EXPECT_EQ(Aac_Container_Show_Failover(AAC0, 0), SPARE);
	EXPECT_EQ(Aac_Container_Show_Failover(AAC0, 3), -10);
	EXPECT_EQ(Aac_Container_Show_Failover(AAC0, 4), -5);

	EXPECT_EQ(Aac_Container_Set_Failover(AAC0, 3, disk_at(1, 10)), 0);
	state_t changed;
	changed.containers = SYSTEM_MIRROR + VOLUME + BIG_STRIPE + FIVE + "spare at=1:10:0\n" + QUARTER;
	expect_state(changed);
	EXPECT_EQ(Aac_Container_Show_Failover(AAC0, 3), disk_at(1, 10));
	EXPECT_EQ(Aac_Container_Set_Failover(AAC0, 3, SPARE), 0);
	EXPECT_EQ(Aac_Container_Show_Failover(AAC0, 3), disk_at(1, 10)) << "the first of two";

	EXPECT_EQ(Aac_Container_Remove_Failover(AAC0, 3, SPARE), 0);
	expect_state(changed);
	EXPECT_EQ(Aac_Container_Remove_Failover(AAC0, 3, disk_at(1, 10)), 0);
	expect_state({});
}

TEST_P(Simulator, TellsDeviceNames)
{
	char name[256];
	// Where nothing stands behind it, the name keeps its line end.
	for (const auto &[number, device] : {std::pair(0, "/dev/sda"), {1, "/dev/sdb\n"}, {2, "/dev/sdc"}}) {
		memset(name, 'x', sizeof name);
		EXPECT_EQ(Aac_Get_Container_Corresponding_Disk_Name(AAC0, number, name), 0);
		EXPECT_STREQ(name, device);
	}
	EXPECT_EQ(Aac_Get_Container_Corresponding_Disk_Name(AAC0, 4, name), -5);
	EXPECT_STREQ(name, "");
	EXPECT_EQ(Aac_Get_Container_Corresponding_Disk_Name(AAC0, 24, name), -300) << "a member has none";
	EXPECT_STREQ(name, "");
	expect_state({});
}

TEST_P(Simulator, ListsDisks)
{
	const std::string disk = "|ACME|EX1016|0|33554560|512|0|0|320\n";
	EXPECT_EQ(disks(), "13\n0:0:0" + disk + "0:1:0" + disk + "0:2:0" + disk + "0:3:0" + disk + "0:4:0" +
	                           disk + "0:5:0|ACME|EX1016|0|33554560|512|1|0|320\n" +
	                           "0:6:0|MAKER|SHELF|3|0|0|5|1|0\n" + "0:7:0" + disk + "1:0:0" + disk +
	                           "1:1:0" + disk + "1:2:0" + disk + "1:3:0" + disk + "1:10:0" + disk);
	expect_state({});
}

TEST_P(Simulator, InitialisesDisks)
{
	EXPECT_EQ(Aac_Disk_Initialize(AAC0, 0, 0, disk_at(0, 9)), -2);
	EXPECT_EQ(Aac_Disk_Initialize(AAC0, 0, 0, disk_at(7, 0)), -2);
	EXPECT_EQ(Aac_Disk_Initialize(AAC0, 0, 0, disk_at(0, 6)), -300) << "a processor";
	EXPECT_EQ(Aac_Disk_Initialize(AAC0, 0, 1, disk_at(0, 1)), -300) << "holds data";
	EXPECT_EQ(Aac_Disk_Initialize(AAC0, 1, 0, disk_at(0, 1)), -300) << "in use";
	expect_state({});
	EXPECT_EQ(Aac_Disk_Initialize(AAC0, 0, 0, disk_at(0, 5)), 0);
	state_t changed;
	changed.usage_of_0_05 = "Initialized";
	expect_state(changed);
	// With the member the stripe goes, and the other member with its task.
	EXPECT_EQ(Aac_Disk_Initialize(AAC0, 1, 1, disk_at(0, 2)), 0);
	changed.containers = SYSTEM_MIRROR + VOLUME + FIVE + QUARTER;
	changed.tasks = ALL_TASKS.substr(0, ALL_TASKS.find('\n') + 1);
	expect_state(changed);
}

TEST_P(Simulator, CountsDefects)
{
	EXPECT_EQ(defects(disk_at(0, 0)), "0|3|0");
	EXPECT_EQ(defects(disk_at(0, 1)), "0|12|1");
	EXPECT_EQ(defects(disk_at(1, 10)), "-50|-1|-1") << "bad status";
	EXPECT_EQ(defects(disk_at(0, 6)), "-6|-1|-1") << "a processor";
	EXPECT_EQ(defects(disk_at(0, 9)), "-2|-1|-1");
	EXPECT_EQ(defects(disk_at(7, 0)), "-2|-1|-1");
	expect_state({});
}

// The tool cuts sizes to a tenth of their unit: an area of 15.998 GB is one of 15.9 GB, in single precision.
TEST_P(Simulator, ShowsFreeSpace)
{
	EXPECT_EQ(space(disk_at(1, 3)), "1 64|16777216") << "a free disk";
	EXPECT_EQ(space(disk_at(0, 0)), "1 10485760|6291456");
	EXPECT_EQ(space(disk_at(1, 2)), "2 64|1048576 1468006|15204352") << "two areas";
	EXPECT_EQ(space(disk_at(1, 1)), "1 2516582|14155776") << "a piece is being rebuilt";
	EXPECT_EQ(space(disk_at(0, 7)), "1 4096|16672358");
	EXPECT_EQ(space(disk_at(0, 5)), "0") << "not initialised";
	EXPECT_EQ(space(disk_at(0, 9)), "-2");
	EXPECT_EQ(space(disk_at(7, 0)), "-2");
	expect_state({});
}

// disk | offset | size | container | type | container above | its type | read and write
TEST_P(Simulator, ShowsPartitions)
{
	EXPECT_EQ(partitions(), "14\n"
	                        "0:0:0|64|10485760|0|1|0|0|3\n"
	                        "0:1:0|64|10485760|0|1|0|0|3\n"
	                        "0:2:0|64|2097152|24|1|2|1|3\n"
	                        "0:3:0|64|2097152|24|1|2|1|3\n"
	                        "0:7:0|64|1024|10|4|0|0|3\n"
	                        "0:7:0|1024|1024|10|4|0|0|3\n"
	                        "0:7:0|2048|1024|10|4|0|0|3\n"
	                        "0:7:0|3072|1024|10|4|0|0|3\n"
	                        "1:0:0|64|2097152|25|1|2|1|3\n"
	                        "1:0:0|2097152|512000|3|2|0|0|3\n"
	                        "1:1:0|64|2097152|25|1|2|1|3\n"
	                        "1:1:0|2097152|512000|3|2|0|0|3\n"
	                        "1:2:0|1048576|512000|3|2|0|0|3\n"
	                        "1:10:0|64|1572864|1|4|0|0|3\n");
	expect_state({});
}

// A run lets its tasks go on after it has shown them.
TEST_P(Simulator, TasksGoOnFromRunToRun)
{
	EXPECT_EQ(tasks(), "2\n105|5|999|0|3\n106|3|450|25|3\n");
	expect_state({});
	state_t state;
	const auto rebuild = [&state](const std::string &done, const std::string &in) {
		state.tasks = "task id=106 function=Rebuild done=" + done +
		              " step=250 container=25 state=" + in + "\n";
	};
	rebuild("450", "RUN");
	use_state(state);
	EXPECT_EQ(tasks(), "1\n106|3|450|25|2\n");
	rebuild("700", "RUN");
	expect_state(state);
	EXPECT_EQ(tasks(), "1\n106|3|700|25|2\n");
	EXPECT_EQ(tasks(), "1\n106|3|950|25|2\n");
	rebuild("1000", "DNE");
	const size_t rebuilt = state.containers.find("rebuild=yes");
	state.containers.replace(rebuilt, 11, "rebuild=no");
	expect_state(state);
	EXPECT_EQ(tasks(), "1\n106|3|1000|25|1\n");
	state.tasks = "";
	expect_state(state);
	EXPECT_EQ(tasks(), "0\n");
}

TEST_P(Simulator, FindsTheTaskOfAContainer)
{
	EXPECT_EQ(Aac_Get_Container_Task(AAC0, 3), nullptr);
	aac_task *found = Aac_Get_Container_Task(AAC0, 25);
	EXPECT_EQ(described(found), "106|3|450|25|3\n");
	Aac_Clear_Task_List(found);
	// With all that stand behind it.
	found = Aac_Get_Container_Task(AAC0, 0);
	EXPECT_EQ(described(found), "105|5|999|0|3\n106|3|450|25|3\n");
	Aac_Clear_Task_List(found);
	EXPECT_EQ(Aac_Get_Container_Task("aac9", 0), nullptr);
}

// ---- what only the filter script makes readable ----

TEST_F(SimulatorTest, PagesOfEveryLength)
{
	const std::string all_disks = disks();
	const std::string all_partitions = partitions();
	ASSERT_EQ(all_disks.substr(0, 3), "13\n");
	ASSERT_EQ(all_partitions.substr(0, 3), "14\n");
	for (int lines = 1; lines <= 18; lines++) {
		fault("pager=" + std::to_string(lines));
		EXPECT_EQ(disks(), all_disks) << lines;
		EXPECT_EQ(partitions(), all_partitions) << lines;
	}
	state_t state;
	state.containers = BIG_STRIPE;
	use_state(state);
	for (int lines = 1; lines <= 11; lines++) {
		fault("pager=" + std::to_string(lines));
		EXPECT_EQ(containers(), "3\n" + BIG_ROWS) << lines;
	}
}

TEST_F(SimulatorTest, NamesOfSeveralWordsAreOne)
{
	state_t state;
	state.vendor_of_0_04 = "TWO WORDS";
	use_state(state);
	const std::string text = disks();
	EXPECT_NE(text.find("0:4:0|TWO_WORDS|EX1016|0|33554560|512|0|0|320\n"), std::string::npos) << text;
}

} // namespace
