// SPDX-License-Identifier: Apache-2.0
// The container list: the tool's answer to "container list" becomes records. Only Aac_Get_Container_List
// comes here; the steps stand open so that each can be tried on its own.
#ifndef DISKSCOUT_HWRAID_AAC_CONTAINER_LIST_H
#define DISKSCOUT_HWRAID_AAC_CONTAINER_LIST_H

#include "hwraid/aacraid/aac_hardraid.h"

// The head of the list that is being built, or was last.
extern aac_container *pContainerHeader;
// What GetLabel returned last.
extern char g_szLabel[512];

// Parses a whole output. While it runs *pnode is the last record made, afterwards the first, whatever the
// result. AAC_OK, the code of the tool's error, or AAC_RUN_FAILED: no file, no echo of the command, no rule
// under the headings, or nothing behind it.
int Get_Container_List_From_File(const char *lpszControllername, const char *lpszFilename,
                                 aac_container **pnode);
// Parses one container's paragraph of up to 2,047 characters, and asks for its hot spare. 0, or -1 when it
// does not start with a container number.
int Deal_With_A_Large_Node(const char *lpszControllername, const char *lpszLargeNode, aac_container **pnode);
// Parses the nNum-th line (from 1) of a paragraph. Line 1 makes the record and decides *pnIfRaid10, whether
// this is a multi-level container. 0, or -1 when there is no memory.
int Deal_With_Single_Line(const char *lpszControllername, const char *lpszLargeNode, char *lpszSingleLine,
                          aac_container ***ppnode, int *pnIfRaid10, int nNum);

// Each sets a field from a line. Always 0.
int nodeGetContainerID(const char *lpszSingleLine, aac_container *node);
int nodeGetContainerType(const char *lpszSingleLine, aac_container *node, int nIfRaid10);
int nodeGetTotalSize(const char *lpszSingleLine, aac_container *node);
int nodeGetStripeSize(const char *lpszSingleLine, aac_container *node);
int nodeGetUsage(const char *lpszSingleLine, aac_container *node);
int nodeGetCIDL(const char *lpszSingleLine, aac_container *node); // a member's address; none: no change
// The whole label of line 2, in g_szLabel. Sets *pnNumHeader to 0.
char *GetLabel(const char *lpszLine, int nIfRaid10, int *pnNumHeader);

#endif
