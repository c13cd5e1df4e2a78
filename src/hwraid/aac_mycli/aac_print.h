// SPDX-License-Identifier: Apache-2.0
// How lists are printed, and the controller that they are asked of.
#ifndef DISKSCOUT_HWRAID_AAC_PRINT_H
#define DISKSCOUT_HWRAID_AAC_PRINT_H

#include "hwraid/aacraid/aac_public.h"

#include <stdio.h>

constexpr char CONTROLLER[] = "aac0";

constexpr char RULE[] = "------------------------------\n";
constexpr char NO_RULE[] = "";

// What the codes mean for which no accessor has a word.
constexpr char CONTAINER_TYPE_CODES[] = "(0- Raid0 1- Raid1 2- Raid5 3- Raid10 4- Volume 5- Reconf)";

inline void PrintAddress(const char *lpszName, int nC_ID_L)
{
	fprintf(stderr, "%-12s:(%d %d %d)\n", lpszName, GetChannelFromC_ID_L(nC_ID_L),
	        GetIDFromC_ID_L(nC_ID_L), GetLunFromC_ID_L(nC_ID_L));
}

// From head to tail; the rule stands before, between and behind the records.
template <class Record>
void PrintRecords(const Record *pHead, void (*pfnPrint)(const Record &), const char *lpszRule)
{
	if (pHead)
		fputs(lpszRule, stderr);
	for (; pHead; pHead = pHead->next) {
		pfnPrint(*pHead);
		fputs(lpszRule, stderr);
	}
}

// What happens to the answer of one kind of query.
template <class Record> struct ListKind {
	void (*pfnReport)(int nResult);
	void (*pfnPrint)(const Record &record);
	const char *lpszRule;
	int (*pfnClear)(Record *pHead);
};

// compat: an empty list, which is no failure, is reported as one: 0. Only below 0 something is wrong.
inline void ReportFailure(int nResult)
{
	if (nResult < 1)
		fprintf(stderr, "Return a less zero value:%d\n", nResult);
}

// Asks with get(&pHead), prints and releases.
template <class Record, class Get> void ShowList(const ListKind<Record> &kind, Get get)
{
	Record *pHead = nullptr;
	const int nResult = get(&pHead);
	kind.pfnReport(nResult);
	if (nResult > 0)
		PrintRecords(pHead, kind.pfnPrint, kind.lpszRule);
	// After a failure, too: the records read before it are there.
	kind.pfnClear(pHead);
}

#endif
