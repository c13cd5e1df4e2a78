// SPDX-License-Identifier: Apache-2.0
// Every operation against every way in which the simulated controller tool can fail, and answers that break
// off.
#include "simulated.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_raid.h"
#include "hwraid/aacraid/aac_task.h"

#include <chrono>

namespace
{

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

// Behind a filter that does not tell what was cut, each operation makes of it what it can.
TEST_P(Operation, OnATextThatIsMissingOrTooLong)
{
	filter("cat \"$1\" >\"$2\"\n");
	paint("noblank", (site_ / "filter").string());
	fault("cut=0");
	EXPECT_EQ(run(), GetParam().no_text);
	expect_done();
	start_anew();
	// Nothing that the filter would take away.
	paint("noblank", FILTER_PROGRAM);
	fault("flood");
	EXPECT_EQ(run(), GetParam().flood);
	expect_done();
}

// The command has been carried out all the same: a change is made, and told as a failure.
TEST_P(Operation, TakesNoCutAnswer)
{
	const std::filesystem::path raw = site_ / "raw";
	filter("[ -e " + raw.string() + " ] || cp \"$1\" " + raw.string() +
	       "\nexec '" FILTER_PROGRAM "' \"$1\" \"$2\"\n");
	paint("terminal,status", (site_ / "filter").string());
	ASSERT_EQ(run(), GetParam().good);
	const size_t whole = read_file(raw).size();
	constexpr size_t PIECES = 12;
	for (size_t i = 0; i <= PIECES; i++) {
		const size_t cut = i * (whole - 1) / PIECES;
		start_anew();
		fault("cut=" + std::to_string(cut));
		EXPECT_EQ(run(), -1) << cut << " of " << whole << " bytes";
		expect_done();
	}
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

} // namespace
