// SPDX-License-Identifier: Apache-2.0
// The menus: what they show and do, and the one loop that serves all six sub-menus.
#ifndef DISKSCOUT_HWRAID_AAC_MENU_H
#define DISKSCOUT_HWRAID_AAC_MENU_H

#include <stddef.h>

struct MenuRow {
	char cChoice;
	void (*pfnAction)(); // does and prints everything; returns early when the input ends
};

struct Menu {
	const char *lpszText;
	const char *lpszPrompt;
	const char *lpszUnknown;
	const MenuRow *pRows;
	size_t nRows;
};

// Does what the line asks for: its first character is the choice, the word clear clears the screen. False
// when the menu does not know it and has said so.
bool Obey(const Menu &menu, const char *lpszLine);
// Serves a sub-menu until the user leaves it or the input ends. Always 0.
int RunMenu(const Menu &menu);

#endif
