// SPDX-License-Identifier: Apache-2.0
// The sub-menu that creates containers. The controller tool is the judge of every answer.
#include "hwraid/aac_mycli/aac_mycli.h"

#include "hwraid/aac_mycli/aac_menu.h"
#include "hwraid/aac_mycli/aac_print.h"
#include "hwraid/aacraid/aac_raid.h"

#include <iterator>
#include <string.h>
#include <utility>

// ---- members ----

// What a container is to be made of: disk addresses, or numbers of containers. There is one slot more than
// may be filled, so that AAC_NO_MORE always stands behind the last one.
struct Members {
	static constexpr int MOST = 64;

	int nValues[MOST + 1];
	int nCount = 0;

	Members()
	{
		for (int i = 0; i <= MOST; i++)
			nValues[i] = AAC_NO_MORE;
	}
};

// A creation takes a list of any length, but a call has one length. So all slots are passed each time: what
// reads them stops at the first AAC_NO_MORE.
template <int first, class Create, int... slots>
static int PassFrom(const Members &members, Create create, std::integer_sequence<int, slots...>)
{
	return create(members.nValues[first + slots]...);
}

// Calls create with the members from this one on, as arguments.
template <int first, class Create> static int PassFrom(const Members &members, Create create)
{
	constexpr int PASSED = Members::MOST + 1 - first;
	return PassFrom<first>(members, create, std::make_integer_sequence<int, PASSED>());
}

// ---- questions ----

static bool AskLabel(char (&szLabel)[256])
{
	return AskText("Please input label:(letter, digital and _, no space...)", szLabel, sizeof szLabel);
}

static bool AskQuickInit(int *pnQuickInit)
{
	char szAnswer[256];
	const bool bAnswered = AskText("Quick init:(0/1):", szAnswer, sizeof szAnswer);
	*pnQuickInit = strcmp(szAnswer, "1") == 0;
	return bAnswered;
}

// compat: of stripe sizes and container numbers the limits leave no number, so nobody is asked and the tool
// gets AAC_NOT_GIVEN: it stripes as it likes, and refuses every RAID 10. Keys that are sent to the console
// count on it.
static bool AskNothing(const char *lpszPrompt, int *pnAnswer)
{
	return AskNumber(0, -1, lpszPrompt, pnAnswer);
}

static bool AskMemberDisk(Members *pMembers)
{
	char szDisk[32];
	snprintf(szDisk, sizeof szDisk, "Disk%d", pMembers->nCount + 1);
	return AskDisk(szDisk, &pMembers->nValues[pMembers->nCount++]);
}

static bool AskMemberMirror(Members *pMembers)
{
	static constexpr const char *PROMPTS[] = {
		"Please input the ID of raid 1 -- the first (you can got via get_container_list):",
		"Please input the ID of raid 1 -- the second (you can got via get_container_list):",
	};
	const char *lpszPrompt = PROMPTS[pMembers->nCount > 0];
	return AskNothing(lpszPrompt, &pMembers->nValues[pMembers->nCount++]);
}

static bool AskFurther(Members *pMembers, const char *lpszQuestion, bool (*pfnAsk)(Members *))
{
	while (pMembers->nCount < Members::MOST) {
		int nAnother;
		if (!AskNumber(0, 1, lpszQuestion, &nAnother))
			return false;
		if (nAnother == 0)
			return true;
		if (!pfnAsk(pMembers))
			return false;
	}
	return true;
}

// ---- levels ----
//
// compat: only RAID 0 asks for the space; RAID 1 and RAID 5 take all that there is. Keys that answered the
// question there would answer the next disk's.

static void CreateRaid0()
{
	char szLabel[256];
	int nStripsize;
	Members disks;
	int nSpace;
	if (!AskLabel(szLabel) || !AskNothing("Please input stripesize(16,32,64):", &nStripsize) ||
	    !AskMemberDisk(&disks) || !AskNumber(0, 99, "Please input Disk 1 use space", &nSpace) ||
	    !AskFurther(&disks, "Do you want to add abother disk?", AskMemberDisk))
		return;
	const auto Create = [&](auto... further) {
		return Aac_Create_Raid0(CONTROLLER, szLabel, nStripsize, disks.nValues[0], nSpace,
		                        disks.nValues[1], further...);
	};
	fprintf(stderr, "create raid0 return:%d\n", PassFrom<2>(disks, Create));
}

static void CreateRaid1()
{
	char szLabel[256];
	int nQuickInit;
	Members disks;
	if (!AskLabel(szLabel) || !AskQuickInit(&nQuickInit) || !AskMemberDisk(&disks) ||
	    !AskMemberDisk(&disks))
		return;
	fprintf(stderr, "create raid1 return:%d\n",
	        Aac_Create_Raid1(CONTROLLER, szLabel, nQuickInit, disks.nValues[0], AAC_NOT_GIVEN,
	                         disks.nValues[1]));
}

static void CreateRaid10()
{
	char szLabel[256];
	int nStripsize;
	Members mirrors;
	if (!AskLabel(szLabel) || !AskNothing("Please Input stripesize(K):", &nStripsize) ||
	    !AskMemberMirror(&mirrors) ||
	    !AskFurther(&mirrors, "Do you want to add another disk?(0/1)", AskMemberMirror))
		return;
	const auto Create = [&](auto... further) {
		return Aac_Create_Raid10(CONTROLLER, szLabel, nStripsize, mirrors.nValues[0],
		                         mirrors.nValues[1], further...);
	};
	fprintf(stderr, "create raid10 return:%d\n", PassFrom<2>(mirrors, Create));
}

static void CreateRaid5()
{
	char szLabel[256];
	int nQuickInit;
	Members disks;
	if (!AskLabel(szLabel) || !AskQuickInit(&nQuickInit) || !AskMemberDisk(&disks) ||
	    !AskFurther(&disks, "Do you want to add another disk?(0/1)", AskMemberDisk))
		return;
	const auto Create = [&](auto... further) {
		return Aac_Create_Raid5(CONTROLLER, szLabel, nQuickInit, AAC_NOT_GIVEN, disks.nValues[0],
		                        AAC_NOT_GIVEN, disks.nValues[1], disks.nValues[2], further...);
	};
	fprintf(stderr, "create raid5 return:%d\n", PassFrom<3>(disks, Create));
}

int do_with_cmd_raid()
{
	static constexpr MenuRow ROWS[] = {
		{'1', CreateRaid0}, {'2', CreateRaid1}, {'3', CreateRaid10}, {'4', CreateRaid5}};
	static constexpr Menu MENU = {
		"\nPlease select:1-create Raid 0, 2- create raid1 3-create raid10 4-create raid5 0- quit\n",
		"Command>Raid>",
		"Unknown raid command!\n",
		ROWS,
		std::size(ROWS),
	};
	return RunMenu(MENU);
}
