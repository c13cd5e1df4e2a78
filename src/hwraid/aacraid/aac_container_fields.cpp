// SPDX-License-Identifier: Apache-2.0
// The fields of a container's lines:
//
//   2    Stripe 67.8GB     64KB   Open    0:04:0 64.0KB:33.9GB
//   /dev/sdc             big              0:05:0 64.0KB:33.9GB
#include "hwraid/aacraid/aac_container_list.h"

#include "base/text.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_scan.h"
#include "hwraid/aacraid/aac_text.h"

#include <stdio.h>
#include <string.h>
#include <string_view>

char g_szLabel[512];

static constexpr char BLANKS[] = " \t";

static const char *SkipBlanks(const char *p)
{
	return p + strspn(p, BLANKS);
}

static const char *SkipDigits(const char *p)
{
	return p + strspn(p, "0123456789");
}

static bool IsHexDigit(char c)
{
	return hex_digit_value(c) >= 0;
}

// ---- first line ----

// -1 when the line does not start with a number.
static int ContainerNumber(const char *lpszLine)
{
	int nNumber = -1;
	const char *p = SkipBlanks(lpszLine);
	if (Is_0_9(*p))
		FieldScan(p).Int(&nNumber);
	return nNumber;
}

int nodeGetContainerID(const char *lpszSingleLine, aac_container *node)
{
	node->nCntnerID = ContainerNumber(lpszSingleLine);
	return 0;
}

// Where the type should stand. compat: at the number itself for a number 0 behind a blank: such a container
// has no type and no size unless the site's filter takes the blank away.
static const char *TypeIn(const char *lpszLine)
{
	const char *p = SkipBlanks(lpszLine);
	if (ContainerNumber(lpszLine) > 0 || lpszLine[0] == '0')
		p = SkipDigits(p);
	return SkipBlanks(p);
}

static constexpr struct ContainerType {
	std::string_view word;
	int nOrdinary;   // type of a container made of disks
	int nMultilevel; // and of one made of containers
} TYPES[] = {
	{"Stripe", KESTREL_HWRAID_TYPE_RAID0, KESTREL_HWRAID_TYPE_RAID10},
	{"Mirror", KESTREL_HWRAID_TYPE_RAID1, KESTREL_HWRAID_TYPE_RAID1},
	{"RAID-5", KESTREL_HWRAID_TYPE_RAID5, KESTREL_HWRAID_TYPE_RAID5},
	{"Volume", KESTREL_HWRAID_TYPE_VOLUME, KESTREL_HWRAID_TYPE_VOLUME},
	{"Reconf", KESTREL_HWRAID_TYPE_RECONF, KESTREL_HWRAID_TYPE_RECONF},
};

static const ContainerType *FindType(const char *lpszType)
{
	for (const ContainerType &row : TYPES)
		if (Including(lpszType, row.word.data()))
			return &row;
	return nullptr;
}

int nodeGetContainerType(const char *lpszSingleLine, aac_container *node, int nIfRaid10)
{
	const ContainerType *pType = FindType(TypeIn(lpszSingleLine));
	if (!pType)
		node->Container_Type = KESTREL_HWRAID_TYPE_UNKNOWN;
	else
		node->Container_Type = nIfRaid10 ? pType->nMultilevel : pType->nOrdinary;
	return 0;
}

static int Megabytes(const char *lpszSize)
{
	const char *lpszUnit = lpszSize + strspn(lpszSize, "0123456789.");
	const bool bGigabytes = Including(lpszUnit, "GB");
	if (lpszUnit == lpszSize || (!bGigabytes && !Including(lpszUnit, "MB")))
		return 0;
	double dSize = 0;
	ReadNumber(lpszSize, lpszUnit, &dSize);
	return NearestInt(bGigabytes ? dSize * 1024 : dSize);
}

int nodeGetTotalSize(const char *lpszSingleLine, aac_container *node)
{
	const char *lpszSize = TypeIn(lpszSingleLine);
	const ContainerType *pType = FindType(lpszSize);
	if (pType)
		lpszSize += pType->word.size();
	else
		node->Container_Type = KESTREL_HWRAID_TYPE_UNKNOWN;
	node->TotalSize = Megabytes(SkipBlanks(lpszSize));
	return 0;
}

// Whether the two characters before p are one of these units.
static bool IsBehindUnit(const char *lpszLine, const char *p, std::initializer_list<const char *> units)
{
	if (p - lpszLine < 2)
		return false;
	for (const char *lpszUnit : units)
		if (memcmp(p - 2, lpszUnit, 2) == 0)
			return true;
	return false;
}

// The stripe column follows the size column.
static bool IsStripeColumn(const char *lpszLine, const char *lpszStripe)
{
	const char *p = lpszStripe;
	while (p != lpszLine && IS_IN(p[-1], BLANKS))
		p--;
	return p != lpszStripe && IsBehindUnit(lpszLine, p, {"GB", "MB"});
}

int nodeGetStripeSize(const char *lpszSingleLine, aac_container *node)
{
	static constexpr struct {
		const char *lpszText;
		int nKilobytes;
	} STRIPES[] = {{"64KB", 64}, {"32KB", 32}, {"16KB", 16}};
	node->StripeSize = 0;
	for (const auto &row : STRIPES) {
		const char *lpszStripe = strstr(lpszSingleLine, row.lpszText);
		if (!lpszStripe)
			continue;
		if (IsStripeColumn(lpszSingleLine, lpszStripe))
			node->StripeSize = row.nKilobytes;
		break;
	}
	return 0;
}

// The first character of a member's address.
static bool IsAddressStart(const char *p)
{
	return p[1] == ':' && p[4] == ':';
}

// The usage column follows a column that ends in a unit.
static bool IsUsageColumn(const char *lpszLine, const char *lpszWord)
{
	if (lpszWord == lpszLine || !IS_IN(lpszWord[-1], BLANKS))
		return false;
	const char *p = lpszWord;
	while (p != lpszLine && (IS_IN(p[-1], BLANKS) || IsAddressStart(p - 1)))
		p--;
	return IsBehindUnit(lpszLine, p, {"GB", "MB", "KB"});
}

static bool HasUsage(const char *lpszLine, const char *lpszWord)
{
	for (const char *p = strstr(lpszLine, lpszWord); p; p = strstr(p + 1, lpszWord))
		if (IsUsageColumn(lpszLine, p))
			return true;
	return false;
}

int nodeGetUsage(const char *lpszSingleLine, aac_container *node)
{
	// By KESTREL_HWRAID_USAGE_TYPE.
	static constexpr char USAGES[10][16] = {"FAT",  "MultPart", "NetWare", "None",    "NTFS",
	                                        "Open", "UnCfged",  "Unknown", "UnMap'd", "Valid"};
	node->Usage = KESTREL_HWRAID_USAGE_TYPE_UNKNOW;
	for (int i = 0; i < 10 && node->Usage == KESTREL_HWRAID_USAGE_TYPE_UNKNOW; i++)
		if (HasUsage(lpszSingleLine, USAGES[i]))
			node->Usage = i;
	return 0;
}

// ---- members ----

// What follows the channel in 0:0a:0, up to the second colon.
static bool IsAddressHead(const char *p)
{
	return p[1] == ':' && IsHexDigit(p[2]) && IsHexDigit(p[3]) && p[4] == ':';
}

static bool IsAddress(const char *p)
{
	return IsAddressHead(p) && IsHexDigit(p[0]) && IsHexDigit(p[5]) &&
	       (p[6] == '\0' || IS_IN(p[6], " \t\n"));
}

static void AddMember(aac_container *node, int nC_ID_L)
{
	node->nDiskNumber++;
	for (int &nMember : node->C_ID_L) {
		if (nMember != AAC_NO_MEMBER)
			continue;
		nMember = nC_ID_L;
		return;
	}
}

int nodeGetCIDL(const char *lpszSingleLine, aac_container *node)
{
	for (const char *p = SkipBlanks(lpszSingleLine); *p != '\0' && *p != '\n'; p++) {
		if (!IsAddress(p))
			continue;
		AddMember(node,
		          GetC_ID_L(hex_digit_value(p[0]), hex_digit_value(p[2]) * 16 + hex_digit_value(p[3]),
		                    hex_digit_value(p[5])));
		break;
	}
	return 0;
}

// ---- label ----

static std::string_view TrimEnd(std::string_view text)
{
	while (!text.empty() && IS_IN(text.back(), BLANKS))
		text.remove_suffix(1);
	return text;
}

// What stands before the last address; nothing when there is none.
static std::string_view BeforeLastAddress(std::string_view text)
{
	constexpr size_t HEAD_LENGTH = 5; // of 0:0a:
	while (text.size() >= HEAD_LENGTH) {
		const char *p = text.data() + text.size() - HEAD_LENGTH;
		if (Is_0_9(p[0]) && IsAddressHead(p))
			return std::string_view(text.data(), text.size() - HEAD_LENGTH);
		text.remove_suffix(1);
	}
	return {};
}

char *GetLabel(const char *lpszLine, int nIfRaid10, int *pnNumHeader)
{
	*pnNumHeader = 0;
	const char *p = SkipBlanks(lpszLine);
	if (*p == '/') // the device that the operating system knows the container by
		p = SkipBlanks(p + strcspn(p, " \t"));
	std::string_view label(p, strcspn(p, "\n"));
	if (!nIfRaid10)
		label = BeforeLastAddress(label);
	label = TrimEnd(label);
	snprintf(g_szLabel, sizeof g_szLabel, "%.*s", static_cast<int>(label.size()), label.data());
	return g_szLabel;
}
