// Creation of containers. No argument is checked: the tool is the judge of every value.
//
// nSpace is in megabytes and nStripsize in kilobytes; 0 or -1 leaves the choice to the tool. Of a label the
// first 16 characters count; null or empty leaves it out. Further disks or containers end with -1. The new
// container's number is not told.
//
// All return 0, or: -1 the run failed, -3 invalid stripe size, -5 a named container does not exist, -20
// containers of a stripe set differ in size, -30 a disk, a channel or the space on it was not found, -70 a
// disk would carry too many container partitions, -100 wrong, missing or unopened controller, -200 controller
// held by another application, -300 another error of the tool.
#ifndef DISKSCOUT_HWRAID_AAC_RAID_H
#define DISKSCOUT_HWRAID_AAC_RAID_H

extern "C" {
#pragma GCC visibility push(default)

int Aac_Create_Raid0(const char *lpszControllerName, const char *lpszLabel, int nStripsize, int nC_ID_L1,
                     int nSpace, int nC_ID_L2, ...);
int Aac_Create_Raid1(const char *lpszControllerName, const char *lpszLabel, int nQuick_init, int nC_ID_L1,
                     int nSpace, int nC_ID_L2);
int Aac_Create_Raid5(const char *lpszControllerName, const char *lpszLabel, int nQuick_init, int nStripsize,
                     int nC_ID_L1, int nSpace, int nC_ID_L2, int nC_ID_L3, ...);
int Aac_Create_Raid10(const char *lpszControllerName, const char *lpszLabel, int nStripsize, int nRaid1ID_1,
                      int nRaid1ID_2, ...);
// Parses the answer to a creation. nRaid is not used: all levels answer alike.
int Analyze_Create_Raid_Created_File(const char *lpszFile, int nRaid);

#pragma GCC visibility pop
}

#endif
