// SPDX-License-Identifier: Apache-2.0
// Names for the temporary files of one tool run.
#ifndef DISKSCOUT_HWRAID_CREATE_A_UUID_H
#define DISKSCOUT_HWRAID_CREATE_A_UUID_H

// A fresh UUID in its 36-character text form into lpszUUID (at least 37 bytes). 0, or -1 for a null buffer.
int CreateOneUuid(char *lpszUUID);

#endif
