// SPDX-License-Identifier: Apache-2.0
// What the user types: lines of standard input, the numbers in them, the questions that several menus ask.
//
// The input ends at its end or at a read error, and stays ended. Whoever asks then gets false, starts nothing
// and returns; so the console unwinds from any depth.
#ifndef DISKSCOUT_HWRAID_AAC_INPUT_H
#define DISKSCOUT_HWRAID_AAC_INPUT_H

#include <stddef.h>

// Forgets an end that an earlier run saw: a terminal goes on behind one.
void StartInput();
// Whether a line was wanted and there was none.
bool InputEnded();
// The next line without its newline, cut to nSize - 1 characters; the rest of it is dropped. A NUL in it ends
// its text. False when the input has ended, also within the line; the buffer is empty then.
bool ReadLine(char *lpszLine, size_t nSize);
// A number from nLower to nUpper; the repeat prompt asks again until there is one. Text that is no number
// counts as 0. Limits that leave no number give -1 unasked. Also -1 when the input has ended.
int InputProcess(int nLower, int nUpper, const char *lpszPrompt, const char *lpszRepeatPrompt);

// Questions. False when the input has ended; the answer means nothing then.
bool AskText(const char *lpszPrompt, char *lpszAnswer, size_t nSize);
bool AskNumber(int nLower, int nUpper, const char *lpszPrompt, int *pnAnswer);
bool AskContainer(const char *lpszPrompt, int *pnContainerID);
// Channel, ID and LUN, packed; the prompts call the disk lpszDisk.
bool AskDisk(const char *lpszDisk, int *pnC_ID_L);

#endif
