// Every operation against the simulated controller tool, however it paints and pages: results, records and
// what becomes of the controller's state. Then every way in which the tool can refuse or fail.
#include "simulator.h"

#include "described.h"
#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_raid.h"
#include "hwraid/aacraid/aac_task.h"

#include <chrono>
#include <math.h>
#include <string.h>

namespace
{

const char *const AAC0 = "aac0";
const int SPARE = GetC_ID_L(0, 4, 0);

int disk_at(int channel, int id)
{
	return GetC_ID_L(channel, id, 0);
}

// ---- the lists as text ----

std::string joined(std::initializer_list<long long> fields)
{
	std::string text;
	for (const long long field : fields)
		text += (text.empty() ? "" : "|") + std::to_string(field);
	return text;
}

std::string containers(const char *controller = AAC0)
{
	aac_container *head = nullptr;
	const int count = Aac_Get_Container_List(controller, &head);
	const std::string text = std::to_string(count) + "\n" + described(head);
	Aac_Clear_Container_List(head);
	return text;
}

std::string controllers()
{
	aac_controller *head = nullptr;
	std::string text = std::to_string(Aac_Get_Controller_List(&head)) + "\n";
	for (const aac_controller *c = head; c; c = c->next)
		text += std::to_string(c->ControllerID) + "|" + c->Adapter_Name + "|" + c->Adapter_Type +
		        "|" + joined({c->Availability, c->Clustering}) + "\n";
	Aac_Clear_Controller_List(head);
	return text;
}

std::string disks()
{
	aac_disk *head = nullptr;
	std::string text = std::to_string(Aac_Get_Disk_List(AAC0, &head)) + "\n";
	for (const aac_disk *d = head; d; d = d->next)
		text += address(d->C_ID_L) + "|" + d->VendorID + "|" + d->ProductID + "|" +
		        joined({d->Device_Type, d->Blocks, d->BytesPerBlock, d->Usage, d->Shared, d->Rate}) +
		        "\n";
	Aac_Clear_Disk_List(head);
	return text;
}

std::string space(int at)
{
	aac_space *head = nullptr;
	std::string text = std::to_string(Aac_Disk_Show_Space(AAC0, at, &head));
	for (const aac_space *s = head; s; s = s->next)
		text += " " + joined({s->nOffset, s->nFreeSpace});
	Aac_Clear_Disk_Space_List(head);
	return text;
}

std::string partitions()
{
	aac_partition *head = nullptr;
	std::string text = std::to_string(Aac_Disk_Show_Partition(AAC0, &head)) + "\n";
	for (const aac_partition *p = head; p; p = p->next) {
		text += address(p->C_ID_L) + "|" +
		        joined({p->nOffset, p->nSize, p->bContainerID, p->ContainerType,
		                p->nMultilevelContainerID, p->nMultilevelContainerType,
		                p->nReadWriteAttribute}) +
		        "\n";
	}
	Aac_Clear_Disk_Partition_List(head);
	return text;
}

// Done in thousandths: what the tool prints has tenths of a percent.
std::string described(const aac_task *head)
{
	std::string text;
	for (const aac_task *t = head; t; t = t->next)
		text += joined({t->TaskId, t->Function, lroundf(t->Done * 1000), t->ContainerID, t->State}) +
		        "\n";
	return text;
}

std::string tasks()
{
	aac_task *head = nullptr;
	const int count = Aac_Get_Task_List(AAC0, &head);
	const std::string text = std::to_string(count) + "\n" + described(head);
	Aac_Clear_Task_List(head);
	return text;
}

std::string defects(int at)
{
	int primary = 4711;
	int grown = 4711;
	const int result = Aac_Disk_Show_Defect(AAC0, at, &primary, &grown);
	return joined({result, primary, grown});
}

// ---- every way of painting ----

struct way_t {
	const char *name;
	const char *painting;
	const char *plain_filter; // null: the filter script
};

// A plain tool begins its rows with the number, or a filter sees to it.
const way_t WAYS[] = {
	{"WithoutBlank", "noblank", "cat \"$1\" >\"$2\"\n"},
	{"WithBlank", "blank", "sed 's/^ \\([^ ]\\)/\\1/' \"$1\" >\"$2\"\n"},
	{"Painted", "terminal,status,blank", nullptr},
	{"PagesOf1", "terminal,status,pager=1,noblank", nullptr},
	{"PagesOf3", "terminal,pager=3,blank", nullptr},
	{"PagesOf7", "status,pager=7,noblank", nullptr},
};

void PrintTo(const way_t &way, std::ostream *out)
{
	*out << way.name;
}

class Simulator : public SimulatorTest, public testing::WithParamInterface<way_t>
{
protected:
	void SetUp() override
	{
		SimulatorTest::SetUp();
		if (GetParam().plain_filter)
			filter(GetParam().plain_filter);
		paint(GetParam().painting,
		      GetParam().plain_filter ? (site_ / "filter").string() : FILTER_PROGRAM);
	}
	void expect_state(const state_t &state) { EXPECT_EQ(state_now(), text_of(state)); }
};

INSTANTIATE_TEST_SUITE_P(Ways, Simulator, testing::ValuesIn(WAYS),
                         [](const testing::TestParamInfo<way_t> &row) { return row.param.name; });

// number | members counted | members | type | MB | stripe | usage | hot spare | label
const std::string SYSTEM_ROW = "0|2|0:0:0,0:1:0|1|10240|0|5|0:4:0|system\n";
const std::string VOLUME_ROW = "1|1|1:10:0|4|1536|0|9|-1|\n";
const std::string BIG_ROWS = "2|2|24,25|3|4096|64|5|-1|big data set\n"
			     "24|2|0:2:0,0:3:0|1|2048|0|5|-1|\n"
			     "25|2|1:0:0,1:1:0|1|2048|0|5|-1|\n";
const std::string FIVE_ROW = "3|3|1:0:0,1:1:0,1:2:0|2|1000|32|4|-1|five\n";
const std::string QUARTER_ROW = "10|4|0:7:0,0:7:0,0:7:0,0:7:0|4|4|0|8|-1|quarter\n";

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

// ---- creation ----

TEST_P(Simulator, CreatesStripes)
{
	EXPECT_EQ(Aac_Create_Raid0(AAC0, "data", 32, disk_at(0, 2), 1024, disk_at(0, 3), -1), 0);
	state_t state;
	state.containers += container(4, "Stripe", 2097152, 32, "/dev/sdf", "data",
	                              piece("0:02:0", 2097216, 1048576) + piece("0:03:0", 2097216, 1048576));
	expect_state(state);
	EXPECT_EQ(containers(), "8\n" + SYSTEM_ROW + VOLUME_ROW + BIG_ROWS + FIVE_ROW +
	                                "4|2|0:2:0,0:3:0|0|2048|32|3|-1|data\n" + QUARTER_ROW);
	// The second disk is looked for on the first one's channel, further ones are not.
	EXPECT_EQ(Aac_Create_Raid0(AAC0, "", 16, disk_at(1, 3), 100, disk_at(0, 2), disk_at(0, 4),
	                           disk_at(1, 10), -1),
	          0);
	state.containers += container(5, "Stripe", 409600, 16, "/dev/sdg", "",
	                              piece("1:03:0", 64, 102400) + piece("1:02:0", 64, 102400) +
	                                      piece("0:04:0", 64, 102400) + piece("1:10:0", 1572928, 102400));
	expect_state(state);
}

TEST_P(Simulator, CreatesAStripeThatLeavesTheChoiceToTheTool)
{
	EXPECT_EQ(Aac_Create_Raid0(AAC0, nullptr, -1, disk_at(1, 3), -1, disk_at(1, 2), -1), 0);
	state_t state;
	state.containers += container(4, "Stripe", 30433280, 64, "/dev/sdf", "",
	                              piece("1:03:0", 64, 15216640) + piece("1:02:0", 1560640, 15216640));
	expect_state(state);
}

TEST_P(Simulator, CreatesMirrors)
{
	EXPECT_EQ(Aac_Create_Raid1(AAC0, "0123456789abcdefXYZ0", 1, disk_at(0, 2), 1024, disk_at(1, 3)), 0);
	state_t state;
	state.containers += container(4, "Mirror", 1048576, 0, "/dev/sdf", "0123456789abcdef",
	                              piece("0:02:0", 2097216, 1048576) + piece("1:03:0", 64, 1048576));
	expect_state(state);
	// Without quick initialisation a check begins.
	EXPECT_EQ(Aac_Create_Raid1(AAC0, "two words", 0, disk_at(0, 2), 1, disk_at(1, 3)), 0);
	state.containers += container(5, "Mirror", 1024, 0, "/dev/sdg", "two words",
	                              piece("0:02:0", 3145792, 1024) + piece("1:03:0", 1048640, 1024));
	state.tasks += "task id=107 function=Bld/Vfy done=200 step=200 container=5 state=RUN\n";
	state.next_task = 108;
	expect_state(state);
	EXPECT_EQ(tasks(), "3\n105|5|999|0|3\n106|3|450|25|3\n107|9|200|5|2\n");
	EXPECT_EQ(containers(), "9\n" + SYSTEM_ROW + VOLUME_ROW + BIG_ROWS + FIVE_ROW +
	                                "4|2|0:2:0,1:3:0|1|1024|0|3|-1|0123456789abcdef\n"
	                                "5|2|0:2:0,1:3:0|1|1|0|3|-1|two words\n" +
	                                QUARTER_ROW);
}

TEST_P(Simulator, CreatesRaid5)
{
	EXPECT_EQ(
		Aac_Create_Raid5(AAC0, "three", 0, 16, disk_at(0, 2), 512, disk_at(0, 3), disk_at(1, 3), -1),
		0);
	state_t state;
	state.containers += container(4, "RAID-5", 1048576, 16, "/dev/sdf", "three",
	                              piece("0:02:0", 2097216, 524288) + piece("0:03:0", 2097216, 524288) +
	                                      piece("1:03:0", 64, 524288));
	const std::string check = "task id=107 function=Bld/Vfy done=200 step=200 container=4 state=RUN\n";
	state.tasks += check;
	state.next_task = 108;
	expect_state(state);
	// Between the third disk and the fourth stands no blank.
	EXPECT_EQ(Aac_Create_Raid5(AAC0, nullptr, 1, 0, disk_at(0, 4), 512, disk_at(1, 10), disk_at(1, 2),
	                           disk_at(0, 2), disk_at(0, 3), -1),
	          0);
	state.containers += container(5, "RAID-5", 2097152, 64, "/dev/sdg", "",
	                              piece("0:04:0", 64, 524288) + piece("1:10:0", 1572928, 524288) +
	                                      piece("1:02:0", 64, 524288) + piece("0:02:0", 2621504, 524288) +
	                                      piece("0:03:0", 2621504, 524288));
	state.tasks.replace(state.tasks.find("done=200"), 8, "done=400");
	expect_state(state);
}

std::string pair_of(int first, int second)
{
	return container(first, "Mirror", 1024, 0, "/dev/sdf", "",
	                 piece("0:02:0", 2097216, 1024) + piece("0:03:0", 2097216, 1024)) +
	       container(second, "Mirror", 1024, 0, "/dev/sdg", "",
	                 piece("1:03:0", 64, 1024) + piece("1:02:0", 64, 1024));
}

std::string as_member(int number, int parent, const std::string &pieces)
{
	return "container number=" + std::to_string(number) +
	       " type=Mirror size_kb=1024 stripe_kb=0 usage=None device=\"\" label=\"\" parent=" +
	       std::to_string(parent) + " data=no\n" + pieces;
}

TEST_P(Simulator, CreatesAStripeOfMirrors)
{
	state_t state;
	state.containers += pair_of(4, 5);
	use_state(state);
	EXPECT_EQ(Aac_Create_Raid10(AAC0, "ten", 16, 5, 4, -1), 0);
	// The members move to the numbers from 24 on, and give up their own and their devices.
	state.containers = ALL_CONTAINERS +
	                   as_member(27, 4, piece("0:02:0", 2097216, 1024) + piece("0:03:0", 2097216, 1024)) +
	                   as_member(26, 4, piece("1:03:0", 64, 1024) + piece("1:02:0", 64, 1024)) +
	                   container(4, "Stripe", 2048, 16, "/dev/sdf", "ten", "");
	expect_state(state);
	EXPECT_EQ(containers(), "10\n" + SYSTEM_ROW + VOLUME_ROW + BIG_ROWS + FIVE_ROW +
	                                "4|2|26,27|3|2|16|3|-1|ten\n"
	                                "26|2|1:3:0,1:2:0|1|1|0|3|-1|\n"
	                                "27|2|0:2:0,0:3:0|1|1|0|3|-1|\n" +
	                                QUARTER_ROW);
}

// ---- what the tool refuses ----

struct refusal_t {
	const char *what;
	int code;
	int (*run)();
};

const refusal_t REFUSALS[] = {
	{"a stripe of 48 KB", -3,
         [] { return Aac_Create_Raid0(AAC0, "", 48, disk_at(0, 2), 1, disk_at(0, 3), -1); }},
	{"a RAID-5 set with a stripe of 128 KB", -3,
         [] {
		 return Aac_Create_Raid5(AAC0, "", 1, 128, disk_at(0, 2), 1, disk_at(0, 3), disk_at(1, 3),
	                                 -1);
	 }},
	{"a stripe of mirrors with a stripe of 1 KB", -3,
         [] { return Aac_Create_Raid10(AAC0, "", 1, 4, 5, -1); }},
	{"no such container", -5, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 7, -1); }},
	{"no such further container", -5, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 5, 7, -1); }},
	{"mirrors of 1 MB and 10 GB", -20, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 0, -1); }},
	{"a stripe of a volume", -300, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 1, -1); }},
	{"a stripe of a member", -300, [] { return Aac_Create_Raid10(AAC0, "", 0, 24, 25, -1); }},
	{"a mirror named twice", -300, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 4, -1); }},
	{"no such channel", -30,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(7, 2), 1, disk_at(0, 3)); }},
	{"no such device", -30,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 9)); }},
	{"no such further device", -30,
         [] { return Aac_Create_Raid0(AAC0, "", 0, disk_at(0, 2), 1, disk_at(0, 3), disk_at(0, 9), -1); }},
	{"more than a disk has", -30,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 16384, disk_at(1, 3)); }},
	{"a fifth piece on a disk", -70,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 7)); }},
	{"a disk that is not initialised", -300,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 5)); }},
	{"a processor", -300, [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 6)); }},
	{"a disk named twice", -300,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 2)); }},
	{"a negative size", -300,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), -5, disk_at(0, 3)); }},
	{"a quotation mark in the label", -300,
         [] { return Aac_Create_Raid1(AAC0, "a\"b", 1, disk_at(0, 2), 1, disk_at(0, 3)); }},
	{"a hot spare of no container", -5, [] { return Aac_Container_Set_Failover(AAC0, 7, SPARE); }},
	{"a hot spare on no channel", -2, [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(7, 0)); }},
	{"no device for a hot spare", -2, [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(0, 9)); }},
	{"a hot spare of a volume", -300, [] { return Aac_Container_Set_Failover(AAC0, 1, SPARE); }},
	{"a hot spare that is not initialised", -300,
         [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(0, 5)); }},
	{"a hot spare that is a member", -300,
         [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(1, 2)); }},
	{"a hot spare that is no disk", -300,
         [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(0, 6)); }},
	{"a hot spare set twice", -300, [] { return Aac_Container_Set_Failover(AAC0, 0, SPARE); }},
	{"to take the hot spare of no container", -5,
         [] { return Aac_Container_Remove_Failover(AAC0, 7, SPARE); }},
	{"to take a hot spare on no channel", -2,
         [] { return Aac_Container_Remove_Failover(AAC0, 0, disk_at(7, 0)); }},
	{"to take no device", -2, [] { return Aac_Container_Remove_Failover(AAC0, 0, disk_at(0, 9)); }},
	{"to take a disk that is no hot spare", -90,
         [] { return Aac_Container_Remove_Failover(AAC0, 0, disk_at(1, 3)); }},
};

TEST_P(Simulator, RefusalsHaveTheirCodesAndChangeNothing)
{
	state_t state;
	state.containers += pair_of(4, 5);
	use_state(state);
	for (const refusal_t &refusal : REFUSALS) {
		EXPECT_EQ(refusal.run(), refusal.code) << refusal.what;
		expect_state(state);
	}
}

// ---- through the boundary ----

class Boundary : public Simulator
{
protected:
	int get(UINT code, std::string argument = AAC0)
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		cmd.szData = argument.data();
		return GetItemInfo(&cmd, &head_, &count_);
	}
	void release(UINT code)
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		EXPECT_EQ(SetItemInfo(&cmd, &head_), 0);
		EXPECT_EQ(head_, nullptr);
	}
	std::string space_of(int at, UINT code = CMD_GET_RAID_SPACE)
	{
		std::string request(sizeof at, '\0');
		memcpy(request.data(), &at, sizeof at);
		const int result = get(code, request + AAC0);
		std::string text = joined({result, count_});
		for (auto *s = static_cast<HWRAID_SPACE_LIST *>(head_); s; s = s->next)
			text += " " + joined({s->nOffset, s->nFreeSpace});
		return text;
	}
	void *head_ = nullptr;
	int count_ = 4711;
};

INSTANTIATE_TEST_SUITE_P(Ways, Boundary, testing::Values(WAYS[0], WAYS[3]),
                         [](const testing::TestParamInfo<way_t> &row) { return row.param.name; });

// Sizes keep the low 32 bits of their bytes: 10 GB, 4 GB and 2 GB come out negative, as 0 and negative.
TEST_P(Boundary, Containers)
{
	ASSERT_EQ(get(CMD_GET_CONTAINERS), 0);
	EXPECT_EQ(count_, 7);
	std::string text;
	for (auto *c = static_cast<HWRAID_LIST *>(head_); c; c = c->next) {
		text += joined({c->nRaidID, c->nDiskNumber, c->nPosition[0], c->nPosition[1], c->nPosition[2],
		                c->nPosition[63], c->RaidType, c->nTotalSize, c->nStripeSize, c->Usage,
		                c->nHotSpare}) +
		        "|" + c->szLabel + "\n";
	}
	EXPECT_EQ(text, "0|2|0|256|-1|-1|1|-2147483648|0|5|1024|system\n"
	                "1|1|68096|-1|-1|-1|4|1610612736|0|9|-1|\n"
	                "2|2|24|25|-1|-1|3|0|65536|5|-1|big data\n"
	                "24|2|512|768|-1|-1|1|-2147483648|0|5|-1|\n"
	                "25|2|65536|65792|-1|-1|1|-2147483648|0|5|-1|\n"
	                "3|3|65536|65792|66048|-1|2|1048576000|32768|4|-1|five\n"
	                "10|4|1792|1792|1792|-1|4|4194304|0|8|-1|quarter\n");
	// The list passed in is gone whatever comes of the query.
	EXPECT_EQ(get(CMD_GET_CONTAINERS, "aac2"), -1);
	EXPECT_EQ(count_, 0);
	EXPECT_EQ(head_, nullptr);
	release(CMD_FREE_CONTAINERS);
}

TEST_P(Boundary, Disks)
{
	ASSERT_EQ(get(CMD_GET_RAID_DISKS), 0);
	EXPECT_EQ(count_, 13);
	int seen = 0;
	for (auto *d = static_cast<HWRAID_DISK_LIST *>(head_); d; d = d->next, seen++) {
		if (d->nPosition != disk_at(0, 5) && d->nPosition != disk_at(0, 6))
			continue;
		const bool shelf = d->nPosition == disk_at(0, 6);
		EXPECT_STREQ(d->szVendor, shelf ? "MAKER" : "ACME");
		EXPECT_STREQ(d->szModel, shelf ? "SHELF" : "EX1016");
		EXPECT_EQ(
			joined({d->DeviceType, d->nBlocks, d->nBytesPerBlock, d->Usage, d->Shared, d->nRate}),
			shelf ? "3|0|0|5|1|0" : "0|33554560|512|1|0|320");
	}
	EXPECT_EQ(seen, 13);
	release(CMD_FREE_RAID_DISKS);
	EXPECT_EQ(get(CMD_GET_RAID_DISKS, "aac9"), -1);
	EXPECT_EQ(count_, 0);
}

TEST_P(Boundary, FreeSpace)
{
	EXPECT_EQ(space_of(disk_at(0, 0)), "0|1 -2147483648|-2147483648");
	// The first list goes before the second is made.
	EXPECT_EQ(space_of(disk_at(1, 2)), "0|2 65536|1073741824 1503238144|-1610612736");
	EXPECT_EQ(space_of(disk_at(0, 5)), "0|0");
	EXPECT_EQ(space_of(disk_at(0, 9)), "-1|0");
	release(CMD_FREE_RAID_SPACE);
}

TEST_P(Boundary, Partitions)
{
	ASSERT_EQ(get(CMD_GET_RAID_PARTITIONS), 0);
	EXPECT_EQ(count_, 14);
	std::string text;
	for (auto *p = static_cast<HWRAID_PARTITION_LIST *>(head_); p; p = p->next) {
		if (p->nPosition == disk_at(1, 1) || p->nPosition == disk_at(0, 0))
			text += joined({p->nPosition, p->nOffset, p->nSize, p->bRaidID, p->RaidType,
			                p->nMultilevelRaidID, p->MultilevelType, p->ReadWriteAttribute}) +
			        "\n";
	}
	// Here nothing wraps.
	EXPECT_EQ(text, "0|65536|10737418240|0|1|0|0|3\n"
	                "65792|65536|2147483648|25|1|2|1|3\n"
	                "65792|2147483648|524288000|3|2|0|0|3\n");
	release(CMD_FREE_RAID_PARTITIONS);
	EXPECT_EQ(get(CMD_GET_RAID_PARTITIONS, "aac3"), -1);
	EXPECT_EQ(count_, 0);
}

TEST_P(Boundary, Controllers)
{
	ASSERT_EQ(get(CMD_GET_CONTROLLERS), 0);
	EXPECT_EQ(count_, 4);
	EXPECT_STREQ(static_cast<aac_controller *>(head_)->Adapter_Name, "aac0");
	fault("exit=1");
	EXPECT_EQ(get(CMD_GET_CONTROLLERS), -1);
	EXPECT_EQ(count_, 0);
	EXPECT_EQ(head_, nullptr);
	release(CMD_FREE_CONTROLLERS);
}

// ---- every operation against every failure ----

struct operation_t {
	const char *name;
	int (*run)(const char *controller);
	bool changes;
	int good;       // its result
	int unusable;   // the controller is missing or of the wrong type
	int busy;       // held by another application
	int not_opened; // no controller is named
	int no_text;    // the tool says nothing
	int flood;      // the tool says more than 1 MiB
};

const operation_t OPERATIONS[] = {
	{"ListContainers",
         [](const char *c) {
		 aac_container *head = nullptr;
		 const int count = Aac_Get_Container_List(c, &head);
		 Aac_Clear_Container_List(head);
		 return count;
	 },
         false, 9, -100, -200, -100, -1, -1},
	{"DeviceName",
         [](const char *c) {
		 char name[256];
		 return Aac_Get_Container_Corresponding_Disk_Name(c, 0, name);
	 },
         false, 0, -100, -200, -100, -300, 0},
	{"Delete", [](const char *c) { return Aac_Container_Delete(c, 0, 3); }, true, 0, -100, -200, -100, 0,
         0},
	{"SetFailover", [](const char *c) { return Aac_Container_Set_Failover(c, 3, SPARE); }, true, 0, -100,
         -200, -100, 0, 0},
	{"ShowFailover", [](const char *c) { return Aac_Container_Show_Failover(c, 0); }, false, 1024, -100,
         -200, -100, 0, 1024},
	{"RemoveFailover", [](const char *c) { return Aac_Container_Remove_Failover(c, 0, SPARE); }, true, 0,
         -100, -200, -100, 0, 0},
	// That "open" is not understood is a parsing error to these four.
	{"CreateRaid0",
         [](const char *c) { return Aac_Create_Raid0(c, "", 0, disk_at(0, 2), 1, disk_at(0, 3), -1); }, true,
         0, -100, -200, -300, 0, 0},
	{"CreateRaid1",
         [](const char *c) { return Aac_Create_Raid1(c, "", 0, disk_at(0, 2), 1, disk_at(0, 3)); }, true, 0,
         -100, -200, -300, 0, 0},
	{"CreateRaid5",
         [](const char *c) {
		 return Aac_Create_Raid5(c, "", 0, 0, disk_at(0, 2), 1, disk_at(0, 3), disk_at(0, 4), -1);
	 },
         true, 0, -100, -200, -300, 0, 0},
	{"CreateRaid10", [](const char *c) { return Aac_Create_Raid10(c, "", 0, 4, 5, -1); }, true, 0, -100,
         -200, -300, 0, 0},
	// This list and that of the tasks look for an error no further than to the echo of their command.
	{"ListDisks",
         [](const char *c) {
		 aac_disk *head = nullptr;
		 const int count = Aac_Get_Disk_List(c, &head);
		 Aac_Clear_Disk_List(head);
		 return count;
	 },
         false, 13, -100, -200, 0, 0, 13},
	// A controller that cannot be opened is deliberately not told; one that is not named is.
	{"Initialise", [](const char *c) { return Aac_Disk_Initialize(c, 0, 0, disk_at(0, 5)); }, true, 0, 0,
         0, -300, 0, 0},
	{"ShowDefect",
         [](const char *c) {
		 int primary;
		 int grown;
		 return Aac_Disk_Show_Defect(c, disk_at(0, 1), &primary, &grown);
	 },
         false, 0, -100, -200, -300, 0, 0},
	{"ShowSpace",
         [](const char *c) {
		 aac_space *head = nullptr;
		 const int count = Aac_Disk_Show_Space(c, disk_at(1, 2), &head);
		 Aac_Clear_Disk_Space_List(head);
		 return count;
	 },
         false, 2, -100, -200, -100, 0, 2},
	{"ShowPartition",
         [](const char *c) {
		 aac_partition *head = nullptr;
		 const int count = Aac_Disk_Show_Partition(c, &head);
		 Aac_Clear_Disk_Partition_List(head);
		 return count;
	 },
         false, 18, -100, -200, -100, 0, 18},
	{"ListTasks",
         [](const char *c) {
		 aac_task *head = nullptr;
		 const int count = Aac_Get_Task_List(c, &head);
		 Aac_Clear_Task_List(head);
		 return count;
	 },
         false, 2, -100, -200, 0, 0, 2},
};

void PrintTo(const operation_t &operation, std::ostream *out)
{
	*out << operation.name;
}

class Operation : public SimulatorTest, public testing::WithParamInterface<operation_t>
{
protected:
	void SetUp() override
	{
		SimulatorTest::SetUp();
		start_anew();
	}
	void start_anew()
	{
		state_t state;
		state.containers += pair_of(4, 5);
		use_state(state);
		before_ = state_now();
	}
	int run(const char *controller = AAC0) { return GetParam().run(controller); }
	void expect_unchanged() { EXPECT_EQ(state_now(), before_); }
	void expect_done() { EXPECT_EQ(state_now() != before_, GetParam().changes); }

	std::string before_;
};

INSTANTIATE_TEST_SUITE_P(All, Operation, testing::ValuesIn(OPERATIONS),
                         [](const testing::TestParamInfo<operation_t> &row) { return row.param.name; });

TEST_P(Operation, Works)
{
	EXPECT_EQ(run(), GetParam().good);
	expect_done();
}

TEST_P(Operation, NeedsAController)
{
	EXPECT_EQ(run("aac9"), GetParam().unusable) << "does not exist";
	EXPECT_EQ(run("aac3"), GetParam().unusable) << "of the wrong type";
	EXPECT_EQ(run("aac2"), GetParam().busy);
	EXPECT_EQ(run(""), GetParam().not_opened);
	fault("missing");
	EXPECT_EQ(run(), GetParam().unusable);
	fault("busy");
	EXPECT_EQ(run(), GetParam().busy);
	expect_unchanged();
}

TEST_P(Operation, ChangesNoReadOnlyController)
{
	// Asked for what it does not have it says so, but never that it can only be read.
	EXPECT_EQ(run("aac1") == -300, GetParam().changes);
	expect_unchanged();
}

TEST_P(Operation, FailsWithTheTool)
{
	for (const char *const words : {"exit=1", "exit=255", "kill"}) {
		start_anew();
		fault(words);
		EXPECT_EQ(run(), -1) << words;
		expect_done();
	}
	write_file(site_ / "state" / "controllers", "no state\n");
	fault("");
	EXPECT_EQ(run(), -1);
	EXPECT_EQ(state_now(), "no state\n");
}

TEST_P(Operation, OnATextThatIsMissingOrTooLong)
{
	// Nothing that the filter would take away.
	paint("noblank", FILTER_PROGRAM);
	fault("cut=0");
	EXPECT_EQ(run(), GetParam().no_text);
	expect_done();
	start_anew();
	fault("flood");
	EXPECT_EQ(run(), GetParam().flood);
	expect_done();
}

TEST_P(Operation, WaitsForASlowTool)
{
	fault("slow=120");
	const auto begin = std::chrono::steady_clock::now();
	EXPECT_EQ(run(), GetParam().good);
	EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(120));
	expect_done();
}

// ---- an answer that breaks off ----

class Cut : public SimulatorTest
{
protected:
	void SetUp() override
	{
		SimulatorTest::SetUp();
		filter("cp \"$1\" " + raw().string() + "\ncat \"$1\" >\"$2\"\n");
		paint("noblank", (site_ / "filter").string());
	}
	// Lets the tool break off behind the text, as it stands in the answer that the whole run gives.
	template <typename Run> void cut_behind(const std::string &text, const Run &run)
	{
		fault("");
		run();
		const std::string whole = read_file(raw());
		const size_t at = whole.find(text);
		ASSERT_NE(at, std::string::npos) << text;
		fault("cut=" + std::to_string(at + text.size()));
	}
	std::filesystem::path raw() const { return site_ / "raw"; }
};

// The questions for hot spares are shorter than what is left, and whole.
TEST_F(Cut, ContainerListEndsWhereItEnds)
{
	state_t state;
	state.containers = SYSTEM_MIRROR + VOLUME;
	use_state(state);
	const auto list_alone = [this] {
		// The hot spares are asked for afterwards: the first answer is the one to keep.
		filter("[ -e " + raw().string() + " ] || cp \"$1\" " + raw().string() +
		       "\ncat \"$1\" >\"$2\"\n");
		containers();
	};
	cut_behind("Executing: container list\n", list_alone);
	EXPECT_EQ(containers(), "-1\n") << "no rule";
	cut_behind("----- ------ ------ --- ------ ------- ------ -------------\n", list_alone);
	EXPECT_EQ(containers(), "-1\n") << "nothing behind the rule";
	cut_behind("64.0KB:10.0GB\n", list_alone);
	EXPECT_EQ(containers(), "1\n0|1|0:0:0|1|10240|0|5|0:4:0|\n") << "no second line";
	cut_behind("Valid   1:0a:0 64.0KB: 1.5GB\n", list_alone);
	EXPECT_EQ(containers(), "2\n" + SYSTEM_ROW + "1|1|1:10:0|4|1536|0|9|-1|\n");
}

TEST_F(Cut, Defects)
{
	const auto run = [] { defects(disk_at(0, 1)); };
	cut_behind("Number of PRIMARY defects on drive: 12\n", run);
	EXPECT_EQ(defects(disk_at(0, 1)), "0|12|-1");
	cut_behind("Executing: disk show defect (0,1,0)\n", run);
	EXPECT_EQ(defects(disk_at(0, 1)), "0|-1|-1");
}

TEST_F(Cut, DisksSpaceAndTasks)
{
	cut_behind("\n0:01:0   Disk            N                ACME", [] { disks(); });
	EXPECT_EQ(disks(), "2\n0:0:0|ACME|EX1016|0|33554560|512|0|0|320\n"
	                   "0:1:0|ACME||0|0|0|-1|-1|0\n");
	cut_behind("Free      64.0KB: 1.0GB\n", [] { space(disk_at(1, 2)); });
	EXPECT_EQ(space(disk_at(1, 2)), "1 64|1048576");
	cut_behind("0:01:0  64.0KB:10.0GB       0     Mirror        0     None     RW\n",
	           [] { partitions(); });
	EXPECT_EQ(partitions(), "2\n0:0:0|64|10485760|0|1|0|0|3\n0:1:0|64|10485760|0|1|0|0|3\n");
	cut_behind("SUS   00000000  00000000\n", [] { tasks(); });
	EXPECT_EQ(tasks(), "1\n105|5|999|0|3\n");
}

// An answer without its table reads as the disk 0:0:0.
TEST_F(Cut, HotSpare)
{
	cut_behind("--------- ----------------------------------\n",
	           [] { Aac_Container_Show_Failover(AAC0, 0); });
	EXPECT_EQ(Aac_Container_Show_Failover(AAC0, 0), 0);
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
