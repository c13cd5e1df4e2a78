// SPDX-License-Identifier: Apache-2.0
// The task operations, against a stand-in tool: the script, the number of tasks, the tasks of one container.
// What is handed over and what is freed shows in the leak check of the sanitizers.
#include "site.h"

#include "hwraid/aacraid/aac_task.h"

namespace
{

// Tasks for the containers 1, 2 and 1, in this order.
const char *const THREE_TASKS = "Executing: task list\n"
				"TaskId Function  Done%  Container State Specific1 Specific2\n"
				"------ -------- ------- --------- ----- --------- ---------\n"
				"  106   Bld/Vfy   0.0%      1      RUN   00000000  00000000\n"
				"  107   Rebuild  45.0%      2      SUS   00000000  00000000\n"
				"  108   Verify   99.9%      1      RUN   00000000  00000000\n"
				"\nAAC0>\n";

class TaskTest : public SiteTest
{
protected:
	static int count()
	{
		aac_task *head = nullptr;
		const int result = Aac_Get_Task_List("aac0", &head);
		EXPECT_EQ(head != nullptr, result > 0);
		EXPECT_EQ(Aac_Clear_Task_List(head), 0);
		return result;
	}

	// The numbers of the tasks handed over; frees them.
	static std::vector<int> tasks_of(int container)
	{
		std::vector<int> numbers;
		aac_task *head = Aac_Get_Container_Task("aac0", container);
		for (const aac_task *task = head; task; task = task->next)
			numbers.push_back(task->TaskId);
		EXPECT_EQ(Aac_Clear_Task_List(head), 0);
		return numbers;
	}
};

using numbers_t = std::vector<int>;

const std::string SCRIPT = "task list \n" + std::string(17, ' ') + "\n" + std::string(4, ' ') + "\nexit" +
                           std::string(9, ' ') + "\n\n\n\n";

TEST_F(TaskTest, ListWritesItsScript)
{
	answer("");
	EXPECT_EQ(count(), 0);
	EXPECT_EQ(script(), "open aac0\n" + SCRIPT);
	aac_task *head = nullptr;
	EXPECT_EQ(Aac_Get_Task_List("%s %n", &head), 0);
	EXPECT_EQ(script(), "open %s %n\n" + SCRIPT);
}

TEST_F(TaskTest, ContainerTaskWritesTheSameScript)
{
	answer("");
	EXPECT_EQ(Aac_Get_Container_Task("aac1", 5), nullptr);
	EXPECT_EQ(script(), "open aac1\n" + SCRIPT);
}

TEST_F(TaskTest, ListTellsItsNumberOfTasks)
{
	answer(THREE_TASKS);
	aac_task *head = nullptr;
	ASSERT_EQ(Aac_Get_Task_List("aac0", &head), 3);
	EXPECT_EQ(head->TaskId, 106);
	EXPECT_EQ(head->Function, 9);
	EXPECT_EQ(head->next->TaskId, 107);
	EXPECT_EQ(head->next->Done, 0.45F);
	EXPECT_EQ(head->next->State, 3);
	EXPECT_EQ(head->next->next->TaskId, 108);
	EXPECT_EQ(head->next->next->Function, 7);
	EXPECT_EQ(head->next->next->next, nullptr);
	EXPECT_EQ(Aac_Clear_Task_List(head), 0);
}

TEST_F(TaskTest, CodesOfTheToolsErrors)
{
	const struct {
		const char *error;
		int code;
	} rows[] = {
		{"<The requested controller is of the wrong type.>", -100},
		{"<Adapter must be opened before this command is used.>", -100},
		{"<The requested controller does not exist.>", -100},
		{"<Another application has opened the controller.>", -200},
		{"<The specified device was not found.>", -300},
		{"<Anything else.>", -300},
	};
	for (const auto &row : rows) {
		answer("Executing: open \"aac0\"\nCommand Error: " + std::string(row.error) + "\n" +
		       THREE_TASKS);
		EXPECT_EQ(count(), row.code) << row.error;
		EXPECT_EQ(tasks_of(1), numbers_t()) << row.error;
	}
}

TEST_F(TaskTest, AFailedRunFails)
{
	answer(THREE_TASKS);
	filter("exit 0\n");
	EXPECT_EQ(count(), -1);
	EXPECT_EQ(tasks_of(1), numbers_t());
	filter("exit 1\n");
	EXPECT_EQ(count(), -1);
	tool("exit 1\n");
	EXPECT_EQ(count(), -1);
	EXPECT_EQ(tasks_of(1), numbers_t());
}

TEST_F(TaskTest, WithoutAConfigurationItFails)
{
	answer(THREE_TASKS);
	std::filesystem::remove(site_ / "config");
	EXPECT_EQ(count(), -1);
	EXPECT_EQ(tasks_of(1), numbers_t());
	EXPECT_FALSE(tool_ran());
}

TEST_F(TaskTest, AScriptThatDoesNotFitIsNotRun)
{
	answer(THREE_TASKS);
	aac_task *head = nullptr;
	EXPECT_EQ(Aac_Get_Task_List(std::string(9000, 'n').c_str(), &head), -1);
	EXPECT_EQ(head, nullptr);
	EXPECT_FALSE(tool_ran());
}

TEST_F(TaskTest, FirstTaskComesWithAllBehindIt)
{
	answer(THREE_TASKS);
	EXPECT_EQ(tasks_of(1), (numbers_t{106, 107, 108}));
}

TEST_F(TaskTest, LaterTaskComesWithThoseBehindIt)
{
	answer(THREE_TASKS);
	EXPECT_EQ(tasks_of(2), (numbers_t{107, 108}));
}

TEST_F(TaskTest, LastTaskComesAlone)
{
	answer(std::string("Executing: task list\n----\n") +
	       "1 Zero 5% 4 RUN\n2 Zero 5% 4 RUN\n3 Zero 5% 5 RUN\n");
	EXPECT_EQ(tasks_of(5), numbers_t{3});
}

TEST_F(TaskTest, HandedOverTasksAreWhole)
{
	answer(THREE_TASKS);
	aac_task *head = Aac_Get_Container_Task("aac0", 2);
	ASSERT_NE(head, nullptr);
	EXPECT_EQ(head->Function, 3);
	EXPECT_EQ(head->Done, 0.45F);
	EXPECT_EQ(head->ContainerID, 2);
	EXPECT_EQ(head->State, 3);
	Aac_Clear_Task_List(head);
}

TEST_F(TaskTest, ContainerWithoutATaskHasNone)
{
	answer(THREE_TASKS);
	for (const int container : {0, 3, 63, -1})
		EXPECT_EQ(Aac_Get_Container_Task("aac0", container), nullptr) << container;
	answer("Executing: task list\n----\n");
	EXPECT_EQ(Aac_Get_Container_Task("aac0", 1), nullptr);
}

TEST(TaskList, AnEmptyOneCanBeReleased)
{
	EXPECT_EQ(Aac_Clear_Task_List(nullptr), 0);
}

} // namespace
