// The controller's background tasks: creating, rebuilding, verifying.
#ifndef DISKSCOUT_HWRAID_AAC_TASK_H
#define DISKSCOUT_HWRAID_AAC_TASK_H

#include "hwraid/aacraid/aac_hardraid.h"

extern "C" {
#pragma GCC visibility push(default)

// Builds the list behind *pHead (null on entry); the caller releases it with Aac_Clear_Task_List. Returns the
// number of tasks, or: -1 the run failed, -100 wrong, missing or unopened controller, -200 controller held by
// another application, -300 another error of the tool.
int Aac_Get_Task_List(const char *lpszControllerName, aac_task **pHead);
// The first task of the container with all tasks behind it in the list, to be released with
// Aac_Clear_Task_List; null when it has none, or when the tasks cannot be listed.
aac_task *Aac_Get_Container_Task(const char *lpszControllerName, int nContainerID);
// Releases a list. Always 0.
int Aac_Clear_Task_List(aac_task *pHead);
// Parses an output of "task list" into a list behind *pHead. 0, or a code as above.
int AnalyzeTaskFile(const char *lpszFile, aac_task **pHead);

#pragma GCC visibility pop
}

#endif
