// Operations on containers, each one run of the controller tool.
//
// Result codes of all: 0 success, -1 the run failed, -100 wrong, missing or unopened controller, -200
// controller held by another application, -300 another error of the tool or an unreadable answer; those of
// one operation stand with it. Disk addresses are packed as by GetC_ID_L.
#ifndef DISKSCOUT_HWRAID_AAC_CONTAINER_H
#define DISKSCOUT_HWRAID_AAC_CONTAINER_H

#include "hwraid/aacraid/aac_hardraid.h"

extern "C" {
#pragma GCC visibility push(default)

// Builds the list behind *pHead (null on entry), members of multi-level containers behind their container;
// the caller releases it with Aac_Clear_Container_List, after a failure too. Runs the tool once more for each
// container's hot spare. Returns the number of records.
int Aac_Get_Container_List(const char *lpszControllerName, aac_container **pHead);
// Releases a list. Always 0.
int Aac_Clear_Container_List(aac_container *pHead);
// -5: no such container. The flag deletes a container with data on it, too.
int Aac_Container_Delete(const char *lpszControllerName, int nAlwaysInitEvenIfHasData, int nContainerID);
// -2: no such channel or device, -5: no such container, -90: the disk is no hot spare.
int Aac_Container_Set_Failover(const char *lpszControllerName, int nContainerID, int nC_ID_L);
// The hot spare's address, or -2, -5 as above, -10 when the container has none. An answer without its table
// reads as the disk 0:0:0.
int Aac_Container_Show_Failover(const char *lpszControllerName, int nContainerID);
// As Aac_Container_Set_Failover.
int Aac_Container_Remove_Failover(const char *lpszControllerName, int nContainerID, int nC_ID_L);
// Writes the operating system's name of the container, at most 255 characters, into the buffer of 256 bytes.
// -1 with a null buffer, -5: no such container.
int Aac_Get_Container_Corresponding_Disk_Name(const char *lpszControllerName, int nContainerID,
                                              char *lpszFilled);

#pragma GCC visibility pop
}

// The answers' parsers; each takes the filtered output file. -1 when it cannot be opened.
int AnalyzeContainerDeleteFile(const char *lpszFile);
int AnalyzeContainerSetFailoverFile(const char *lpszFile); // of removing, too
int AnalyzeContainerShowFailoverFile(const char *lpszFile);
int AnalyzeContainerDiskNameFile(const char *lpszFile, char *lpszFilled);

#endif
