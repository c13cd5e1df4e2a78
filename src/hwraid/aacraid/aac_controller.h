// The RAID controllers that the controller tool can see.
#ifndef DISKSCOUT_HWRAID_AAC_CONTROLLER_H
#define DISKSCOUT_HWRAID_AAC_CONTROLLER_H

#include "diskscout.h"

extern "C" {
#pragma GCC visibility push(default)

// Builds the list behind *pHead (null on entry); the caller releases it with Aac_Clear_Controller_List.
// Returns the number of controllers, or: -1 the run failed, -100 wrong, missing or unopened controller, -200
// controller held by another application, -300 another error of the tool.
int Aac_Get_Controller_List(aac_controller **pHead);
// Copies the name of the controller at the position (from 0; less than 0 is the first) into the buffer of at
// least 32 bytes. 0, or -1 with the buffer empty.
int Aac_Get_Controller_Name(char *lpszControllerName, int nPosition);
// Releases a list. Always 0.
int Aac_Clear_Controller_List(aac_controller *pHead);
// Parses an output of "controller list" into a list behind *pHead. 0, or a code as above with no list.
int AnalyzeControllerFile(const char *lpszFile, aac_controller **pHead);

#pragma GCC visibility pop
}

#endif
