// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aac_mycli/aac_input.h"

#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_scan.h"

#include <errno.h>
#include <iterator>
#include <stdio.h>

// ---- lines ----

// The stream's own marks are the only memory of an end.
void StartInput()
{
	clearerr(stdin);
}

bool InputEnded()
{
	return feof(stdin) || ferror(stdin);
}

static int NextCharacter()
{
	int c;
	while ((c = getc(stdin)) == EOF && ferror(stdin) && errno == EINTR)
		clearerr(stdin); // a signal that the host handles is no end
	return c;
}

bool ReadLine(char *lpszLine, size_t nSize)
{
	lpszLine[0] = '\0';
	if (InputEnded())
		return false;
	size_t nLength = 0;
	int c;
	while ((c = NextCharacter()) != EOF && c != '\n')
		if (nLength + 1 < nSize)
			lpszLine[nLength++] = static_cast<char>(c);
	// From a serial line, lines end with two characters.
	if (nLength > 0 && lpszLine[nLength - 1] == '\r')
		nLength--;
	// compat: a last line without its newline is no answer, for it may be half of a number. Whoever pipes
	// keys in ends the last one, too.
	lpszLine[c == EOF ? 0 : nLength] = '\0';
	return c != EOF;
}

// ---- numbers ----

// compat: text that is no number, and no text at all, is 0. Enter alone at "Container ID" means container 0.
static int NumberIn(const char *lpszLine)
{
	int nNumber = 0;
	FieldScan(lpszLine).Int(&nNumber);
	return nNumber;
}

int InputProcess(int nLower, int nUpper, const char *lpszPrompt, const char *lpszRepeatPrompt)
{
	if (nLower > nUpper)
		return -1;
	for (;;) {
		char szLine[128];
		fprintf(stderr, "%s", lpszPrompt);
		if (!ReadLine(szLine, sizeof szLine))
			return -1;
		const int nNumber = NumberIn(szLine);
		fputs("\n", stderr);
		if (nNumber >= nLower && nNumber <= nUpper)
			return nNumber;
		lpszPrompt = lpszRepeatPrompt;
	}
}

// ---- questions ----

bool AskText(const char *lpszPrompt, char *lpszAnswer, size_t nSize)
{
	fprintf(stderr, "%s", lpszPrompt);
	return ReadLine(lpszAnswer, nSize);
}

bool AskNumber(int nLower, int nUpper, const char *lpszPrompt, int *pnAnswer)
{
	*pnAnswer = InputProcess(nLower, nUpper, lpszPrompt, "\tRepeat input:");
	return !InputEnded();
}

bool AskContainer(const char *lpszPrompt, int *pnContainerID)
{
	return AskNumber(0, 99, lpszPrompt, pnContainerID);
}

// compat: the prompts speak of defects whatever is done with the disk; who waits for them waits for these
// words.
bool AskDisk(const char *lpszDisk, int *pnC_ID_L)
{
	static constexpr struct {
		const char *lpszName;
		int nUpper;
	} PARTS[] = {{"Channel", 9}, {"ID", 99}, {"Lun", 9}};
	int nNumbers[std::size(PARTS)];
	for (size_t i = 0; i < std::size(PARTS); i++) {
		char szPrompt[128];
		snprintf(szPrompt, sizeof szPrompt, "Please input %s %s(which defect are shown):", lpszDisk,
		         PARTS[i].lpszName);
		if (!AskNumber(0, PARTS[i].nUpper, szPrompt, &nNumbers[i]))
			return false;
	}
	*pnC_ID_L = GetC_ID_L(nNumbers[0], nNumbers[1], nNumbers[2]);
	return true;
}
