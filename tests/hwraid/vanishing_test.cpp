// SPDX-License-Identifier: Apache-2.0
// Answers that are there when the run looks for them, and gone or out of reach when the parser opens them.
#include "outside.h"
#include "site.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_raid.h"
#include "hwraid/aacraid/aac_task.h"

namespace
{

template <typename Record> int run_list(int (*get)(const char *, Record **))
{
	Record *head = nullptr;
	const int result = get("aac0", &head);
	EXPECT_EQ(head, nullptr);
	return result;
}

int list_containers()
{
	return run_list(Aac_Get_Container_List);
}

struct operation_t {
	const char *name;
	int (*run)();
};

void PrintTo(const operation_t &row, std::ostream *stream)
{
	*stream << row.name;
}

const operation_t OPERATIONS[] = {
	{"ListControllers",
         [] {
		 return run_list<aac_controller>(
			 [](const char *, aac_controller **head) { return Aac_Get_Controller_List(head); });
	 }},
	{"ListContainers", list_containers},
	{"Delete", [] { return Aac_Container_Delete("aac0", 0, 5); }},
	{"SetFailover", [] { return Aac_Container_Set_Failover("aac0", 5, 256); }},
	{"ShowFailover", [] { return Aac_Container_Show_Failover("aac0", 5); }},
	{"DeviceName",
         [] {
		 char name[256];
		 return Aac_Get_Container_Corresponding_Disk_Name("aac0", 5, name);
	 }},
	{"Create", [] { return Aac_Create_Raid1("aac0", "", 0, 0, 0, 256); }},
	{"ListDisks", [] { return run_list(Aac_Get_Disk_List); }},
	{"Initialize", [] { return Aac_Disk_Initialize("aac0", 0, 0, 256); }},
	{"ShowDefect",
         [] {
		 int primary;
		 int grown;
		 return Aac_Disk_Show_Defect("aac0", 256, &primary, &grown);
	 }},
	{"ShowSpace",
         [] {
		 return run_list<aac_space>([](const char *controller, aac_space **head) {
			 return Aac_Disk_Show_Space(controller, 256, head);
		 });
	 }},
	{"ShowPartition", [] { return run_list(Aac_Disk_Show_Partition); }},
	{"ListTasks", [] { return run_list(Aac_Get_Task_List); }},
};

const std::string FILTERED = "33333333-3333-3333-3333-333333333333";

// Not even root can open a link to itself.
void put_out_of_reach(const std::string &path)
{
	std::filesystem::remove(path);
	std::filesystem::create_symlink(path, path);
}

void take_away(const std::string &path)
{
	std::filesystem::remove(path);
}

class VanishingTest : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		answer("Executing: container list\n----- \n0    Mirror 1.0GB  Open 0:00:0 64.0KB:1.0GB\n");
		outside.first_name = 1;
	}
	// When somebody has looked at the answer for the nth time.
	static void after_look(int nth, void (*act)(const std::string &))
	{
		outside.looked_at = [nth, act, looks = 0](const std::string &path) mutable {
			if (path == FILTERED && ++looks == nth)
				act(path);
		};
	}

private:
	own_outside_t own_;
};

class Vanishing : public VanishingTest, public testing::WithParamInterface<operation_t>
{
};

INSTANTIATE_TEST_SUITE_P(Answer, Vanishing, testing::ValuesIn(OPERATIONS),
                         [](const testing::TestParamInfo<operation_t> &row) { return row.param.name; });

TEST_P(Vanishing, FailsTheOperation)
{
	after_look(1, take_away);
	EXPECT_EQ(GetParam().run(), -1);
	EXPECT_TRUE(tool_ran());
}

TEST_P(Vanishing, OutOfReachFailsTheOperation)
{
	after_look(1, put_out_of_reach);
	EXPECT_EQ(GetParam().run(), -1);
	EXPECT_TRUE(tool_ran());
}

// The listing is read whole: its size is asked for first.
TEST_F(VanishingTest, ListingGoesWhileItIsRead)
{
	for (void (*const act)(const std::string &) : {take_away, put_out_of_reach}) {
		outside.first_name = 1;
		after_look(2, act);
		EXPECT_EQ(list_containers(), -1);
	}
}

TEST_F(VanishingTest, FileThatIsReadWholeIsNone)
{
	for (void (*const act)(const std::string &) : {take_away, put_out_of_reach}) {
		write_file(FILTERED, "text");
		after_look(1, act);
		EXPECT_EQ(Get_Content_Of_The_File(FILTERED.c_str()), nullptr);
		std::filesystem::remove(FILTERED);
	}
}

} // namespace
