// SPDX-License-Identifier: Apache-2.0
// The sub-menus of the controllers and of a controller's background tasks.
#include "hwraid/aac_mycli/aac_mycli.h"

#include "hwraid/aac_mycli/aac_menu.h"
#include "hwraid/aac_mycli/aac_print.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_task.h"

#include <iterator>

// ---- controllers ----

static void PrintController(const aac_controller &controller)
{
	fprintf(stderr, "ControllerID: %d\n", controller.ControllerID);
	fprintf(stderr, "Adapter_Name: %s\n", controller.Adapter_Name);
	fprintf(stderr, "Adapter_Type: %s\n", controller.Adapter_Type);
	fprintf(stderr, "Availability: %d (0- Unavaible 1- Unknown 2-read only 3- read/write) \n",
	        controller.Availability);
	// compat: what is neither yes nor no is shown as No; the management interface's menu shows the
	// number.
	fprintf(stderr, "Clustering  : %s\n", controller.Clustering == 1 ? "Yes" : "No");
}

static void ListControllers()
{
	static constexpr ListKind<aac_controller> KIND = {ReportFailure, PrintController, RULE,
	                                                  Aac_Clear_Controller_List};
	ShowList(KIND, Aac_Get_Controller_List);
}

static void NameController()
{
	int nPosition;
	if (!AskNumber(0, 9, "Please input index you are searching(0-9):", &nPosition))
		return;
	char szName[32];
	const int nResult = Aac_Get_Controller_Name(szName, nPosition);
	fprintf(stderr, "get controller name return :%d, name = %s\n", nResult, szName);
}

int do_with_cmd_controller()
{
	static constexpr MenuRow ROWS[] = {{'1', ListControllers}, {'2', NameController}};
	static constexpr Menu MENU = {
		"\nPlease select:1-get controller list, 2 -get name 0- quit\n",
		"Command>Controller>",
		"Unknown controller command!\n",
		ROWS,
		std::size(ROWS),
	};
	return RunMenu(MENU);
}

// ---- tasks ----

static void PrintTaskFields(const aac_task &task)
{
	fprintf(stderr, "Function: %d\n", task.Function);
	fprintf(stderr, "Done    : %f\n", static_cast<double>(task.Done));
	fprintf(stderr, "ContainerID: %d\n", task.ContainerID);
	fprintf(stderr, "State   : %d\n", task.State);
}

static void PrintTask(const aac_task &task)
{
	fprintf(stderr, "TaskId  : %d\n", task.TaskId);
	PrintTaskFields(task);
}

static void ListTasks()
{
	static constexpr ListKind<aac_task> KIND = {ReportFailure, PrintTask, NO_RULE, Aac_Clear_Task_List};
	ShowList(KIND, [](aac_task **pHead) { return Aac_Get_Task_List(CONTROLLER, pHead); });
}

static void ShowContainerTask()
{
	int nContainerID;
	if (!AskContainer("Please input containerID:", &nContainerID))
		return;
	aac_task *pTask = Aac_Get_Container_Task(CONTROLLER, nContainerID);
	if (pTask) {
		fprintf(stderr, "Taskid = %d\n", pTask->TaskId);
		PrintTaskFields(*pTask);
	} else {
		// compat: no task and a tool that fails look the same; the list of all tasks tells them
		// apart.
		fprintf(stderr, "get container task return:%d\n", -1);
	}
	// With all tasks behind it in the list.
	Aac_Clear_Task_List(pTask);
}

int do_with_cmd_task()
{
	static constexpr MenuRow ROWS[] = {{'1', ListTasks}, {'2', ShowContainerTask}};
	static constexpr Menu MENU = {
		"\nPlease select:1-get task list, 2 -get container task 0- quit\n",
		"Command>Task>",
		"Unknown task command!\n",
		ROWS,
		std::size(ROWS),
	};
	return RunMenu(MENU);
}
