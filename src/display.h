// SPDX-License-Identifier: Apache-2.0
// The exported records of the local inventory on standard error, field by field.
#ifndef DISKSCOUT_DISPLAY_H
#define DISKSCOUT_DISPLAY_H

// Prints the records behind head, at most count of them; a negative count prints all. head is a list of
// tagStorageDiskList, tagStorageCdromList or tagStoragePartList; null is an empty one.
void display_stdisk(const void *head, int count);
void display_stcdrom(const void *head, int count);
void display_stpart(const void *head, int count);

#endif
