// SPDX-License-Identifier: Apache-2.0
// The tool's answer to "container list", as the filter script leaves it:
//
//   Executing: container list
//   Num          Total  Oth Stripe          Scsi   Partition
//   Label Type   Size   Ctr Size   Usage   C:ID:L Offset:Size
//   ----- ------ ------ --- ------ ------- ------ -------------
//   0    Mirror 74.5GB            Open    0:02:0 64.0KB:74.5GB
//   /dev/sda             data             0:03:0 64.0KB:74.5GB
//
//   2    Stripe 67.8GB     64KB   Open
//   /dev/sdc             big
//   24    Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB
//                                          0:05:0 64.0KB:33.9GB
//
//   AAC0>
//
// A paragraph is a container. The second one is multi-level: its members are containers, from its third line
// on.
#include "hwraid/aacraid/aac_container_list.h"

#include "base/text.h"
#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_pieces.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <new>
#include <stdio.h>
#include <string.h>

aac_container *pContainerHeader;

// Members of multi-level containers are numbered from here on.
static constexpr int FIRST_SUB_CONTAINER = 24;
static constexpr int MAX_CONTAINERS = 64;

// compat: a paragraph that does not fit is skipped: its container is missing from the list.
typedef char Paragraph[2048];

// ---- one line ----

static aac_container *MakeContainer()
{
	auto *pContainer = new (std::nothrow) aac_container();
	if (!pContainer)
		return nullptr;
	pContainer->nCntnerID = -1;
	for (int &nMember : pContainer->C_ID_L)
		nMember = AAC_NO_MEMBER;
	pContainer->Container_Type = KESTREL_HWRAID_TYPE_UNKNOWN;
	pContainer->StripeSize = 64;
	pContainer->Usage = KESTREL_HWRAID_USAGE_TYPE_UNKNOW;
	pContainer->HotSpare = AAC_NO_MEMBER;
	return pContainer;
}

// The list's end is the caller's variable: it moves on to the new record. An empty one begins a list.
static int AppendContainer(aac_container **pnode)
{
	aac_container *pContainer = MakeContainer();
	if (!pContainer)
		return -1;
	if (*pnode)
		(*pnode)->next = pContainer;
	else
		pContainerHeader = pContainer;
	*pnode = pContainer;
	return 0;
}

static bool EndsInSize(const char *lpszLine)
{
	const char *lpszUnit = lpszLine + strlen(lpszLine) - 2;
	return strcmp(lpszUnit, "MB") == 0 || strcmp(lpszUnit, "GB") == 0;
}

static void TakeFirstLine(const char *lpszLine, aac_container *node, int *pnIfRaid10)
{
	// An ordinary container's first line ends with its first member's place and size.
	*pnIfRaid10 = EndsInSize(lpszLine) ? 0 : 1;
	nodeGetContainerID(lpszLine, node);
	nodeGetContainerType(lpszLine, node, *pnIfRaid10);
	nodeGetTotalSize(lpszLine, node);
	nodeGetStripeSize(lpszLine, node);
	nodeGetUsage(lpszLine, node);
	if (!*pnIfRaid10)
		nodeGetCIDL(lpszLine, node);
}

static void TakeLabelLine(const char *lpszLine, aac_container *node, int nIfRaid10)
{
	int nHeader;
	const char *lpszLabel = GetLabel(lpszLine, nIfRaid10, &nHeader);
	snprintf(node->Label, sizeof node->Label, "%s", lpszLabel);
	// The member stands behind the label, or where it would.
	if (!nIfRaid10)
		nodeGetCIDL(lpszLine + strlen(lpszLabel), node);
}

int Deal_With_Single_Line(const char *, const char *, char *lpszSingleLine, aac_container ***ppnode,
                          int *pnIfRaid10, int nNum)
{
	DeleteTailSpaceAndReturn(lpszSingleLine);
	if (nNum == 1 && AppendContainer(*ppnode) != 0)
		return -1;
	if (strlen(lpszSingleLine) < 2)
		return 0;
	aac_container *node = **ppnode;
	if (nNum == 1)
		TakeFirstLine(lpszSingleLine, node, pnIfRaid10);
	else if (nNum == 2 && node->nCntnerID < FIRST_SUB_CONTAINER)
		TakeLabelLine(lpszSingleLine, node, *pnIfRaid10);
	else if (nNum == 2 || !*pnIfRaid10)
		nodeGetCIDL(lpszSingleLine, node);
	return 0;
}

// ---- one container ----

static bool StartsWithContainerNumber(const char *lpszText)
{
	const char *p = lpszText + strspn(lpszText, " \t");
	std::string_view digits(p, strspn(p, "0123456789"));
	int nNumber;
	return take_decimal(&digits, &nNumber) && nNumber < MAX_CONTAINERS;
}

// "24 ..." at the start of a line: the number, else -1.
static int SubContainerNumber(const char *lpszLine)
{
	if (!Is_0_9(lpszLine[0]) || !Is_0_9(lpszLine[1]) || !IS_IN(lpszLine[2], " \t"))
		return -1;
	const int nNumber = (lpszLine[0] - '0') * 10 + (lpszLine[1] - '0');
	return nNumber >= FIRST_SUB_CONTAINER && nNumber < MAX_CONTAINERS ? nNumber : -1;
}

// A number that is no member's address, such as 0:01:0.
static bool BeginsSubContainer(const char *lpszLine)
{
	return Is_0_9(lpszLine[0]) && (IS_IN(lpszLine[1], " \t") || Is_0_9(lpszLine[1])) &&
	       lpszLine[2] != ':';
}

static const char *NextLine(const char *lpszText)
{
	const char *p = strchr(lpszText, '\n');
	return p ? p + 1 : lpszText + strlen(lpszText);
}

// From the first slot on, whatever line 2 has put there.
static void TakeSubContainerNumbers(const char *lpszText, aac_container *node)
{
	int nSlot = 0;
	for (const char *p = lpszText; *p != '\0'; p = NextLine(p)) {
		const int nNumber = SubContainerNumber(p);
		if (nNumber == -1)
			continue;
		if (nSlot < MAX_CONTAINERS)
			node->C_ID_L[nSlot++] = nNumber;
		node->nDiskNumber++;
	}
}

static const char *NextSubContainer(const char *lpszLine)
{
	while (*lpszLine != '\0' && !BeginsSubContainer(lpszLine))
		lpszLine = NextLine(lpszLine);
	return lpszLine;
}

// Each has a paragraph of its own within the text; what stands before the first belongs to none.
static void DealWithSubContainers(const char *lpszControllername, const char *lpszText, aac_container **pnode)
{
	for (const char *p = NextSubContainer(lpszText); *p != '\0';) {
		const char *lpszNext = NextSubContainer(NextLine(p));
		Paragraph szPart;
		snprintf(szPart, sizeof szPart, "%.*s", static_cast<int>(lpszNext - p), p);
		Deal_With_A_Large_Node(lpszControllername, szPart, pnode);
		p = lpszNext;
	}
}

int Deal_With_A_Large_Node(const char *lpszControllername, const char *lpszLargeNode, aac_container **pnode)
{
	if (!StartsWithContainerNumber(lpszLargeNode))
		return -1;
	int nIfRaid10 = 0;
	PieceWalk lines(lpszLargeNode, '\n', 1);
	const char *lpszThirdLine = "";
	for (int n = 1; lines.Next() && lines.Length() != 0; n++) {
		if (n == 3 && nIfRaid10) {
			lpszThirdLine = lines.Start();
			break;
		}
		char szLine[512];
		lines.Copy(szLine, sizeof szLine);
		if (Deal_With_Single_Line(lpszControllername, lpszLargeNode, szLine, &pnode, &nIfRaid10, n) !=
		    0)
			return -1;
	}

	aac_container *node = *pnode;
	if (!node)
		return -1;
	const int nHotSpare = Aac_Container_Show_Failover(lpszControllername, node->nCntnerID);
	if (nHotSpare >= 0)
		node->HotSpare = nHotSpare;
	TakeSubContainerNumbers(lpszThirdLine, node);
	DealWithSubContainers(lpszControllername, lpszThirdLine, pnode);
	return 0;
}

// ---- the whole output ----

// Cuts out every pager prompt with the blanks behind it, those included that only appear once another is cut.
static void CutPagerPrompts(char *lpszText)
{
	constexpr size_t PROMPT_LENGTH = sizeof PAGER_PROMPT - 1;
	char *lpszTo = lpszText; // before it stands what stays
	char *lpszFrom = lpszText;
	for (char *p = strstr(lpszFrom, PAGER_PROMPT); p; p = strstr(lpszFrom, PAGER_PROMPT)) {
		const auto nKept = static_cast<size_t>(p - lpszFrom);
		memmove(lpszTo, lpszFrom, nKept);
		lpszTo += nKept;
		lpszFrom = p + PROMPT_LENGTH;
		lpszFrom += strspn(lpszFrom, " \t");
		// What has been joined is looked at once more.
		const auto nBefore = static_cast<size_t>(lpszTo - lpszText);
		const size_t nAgain = nBefore < PROMPT_LENGTH - 1 ? nBefore : PROMPT_LENGTH - 1;
		lpszTo -= nAgain;
		lpszFrom -= nAgain;
		memmove(lpszFrom, lpszTo, nAgain);
	}
	memmove(lpszTo, lpszFrom, strlen(lpszFrom) + 1);
}

// What follows the rule under the headings; null when something on the way there is missing.
static const char *FindListing(const char *lpszText)
{
	const char *lpszEcho = strstr(lpszText, "\nExecuting: container list");
	const char *lpszRule = lpszEcho ? strstr(lpszEcho + 1, "\n-----") : nullptr;
	const char *lpszEnd = lpszRule ? strchr(lpszRule + 1, '\n') : nullptr;
	return lpszEnd && lpszEnd[1] != '\0' ? lpszEnd + 1 : nullptr;
}

static char LowerCase(char c)
{
	return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// "AAC0>" for the controller aac0, whatever the host's language knows of letters.
static bool IsControllerPrompt(const char *lpszParagraph, const char *lpszControllername)
{
	for (; *lpszControllername != '\0'; lpszControllername++, lpszParagraph++)
		if (LowerCase(*lpszParagraph) != LowerCase(*lpszControllername))
			return false;
	return *lpszParagraph == '>';
}

static void TakeContainers(const char *lpszControllername, const char *lpszListing, aac_container **pnode)
{
	Paragraph szParagraph;
	for (PieceWalk paragraphs(lpszListing, '\n', 2); paragraphs.Next();) {
		if (paragraphs.Length() == 0 || paragraphs.Length() >= sizeof szParagraph)
			continue;
		paragraphs.Copy(szParagraph, sizeof szParagraph);
		if (IsControllerPrompt(szParagraph, lpszControllername))
			return;
		const int nResult = Deal_With_A_Large_Node(lpszControllername, szParagraph, pnode);
		OutputDebugString("Deal with a larger node return %d\n", nResult);
	}
}

static int ParseOutput(const char *lpszControllername, char *lpszText, aac_container **pnode)
{
	CutPagerPrompts(lpszText);
	const int nError = CheckIfExistErrors(lpszText);
	if (nError != 0)
		return nError;
	const char *lpszListing = FindListing(lpszText);
	if (!lpszListing)
		return AAC_RUN_FAILED;
	TakeContainers(lpszControllername ? lpszControllername : "", lpszListing, pnode);
	return 0;
}

int Get_Container_List_From_File(const char *lpszControllername, const char *lpszFilename,
                                 aac_container **pnode)
{
	// Never the list of an earlier parse, which its owner has released.
	pContainerHeader = nullptr;
	*pnode = nullptr;
	char *lpszText = Get_Content_Of_The_File(lpszFilename);
	const int nResult = lpszText ? ParseOutput(lpszControllername, lpszText, pnode) : AAC_RUN_FAILED;
	delete[] lpszText;
	*pnode = pContainerHeader;
	return nResult;
}
