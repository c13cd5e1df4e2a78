// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aac_mycli/aac_menu.h"

#include "hwraid/aac_mycli/aac_input.h"
#include "hwraid/aacraid/aac_public.h"

#include <stdio.h>
#include <stdlib.h>

// compat: of a choice only the first character counts, so that "10" is choice 1. Whoever means another gets
// that.
bool Obey(const Menu &menu, const char *lpszLine)
{
	for (const MenuRow *pRow = menu.pRows; pRow != menu.pRows + menu.nRows; pRow++) {
		if (lpszLine[0] == pRow->cChoice) {
			pRow->pfnAction();
			return true;
		}
	}
	if (Including(lpszLine, "clear")) {
		// A screen that cannot be cleared is no reason to stop.
		[[maybe_unused]] const int nStatus = system("clear");
		return true;
	}
	fputs(menu.lpszUnknown, stderr);
	return false;
}

int RunMenu(const Menu &menu)
{
	while (!InputEnded()) {
		char szLine[256];
		fputs(menu.lpszText, stderr);
		if (!AskText(menu.lpszPrompt, szLine, sizeof szLine) || szLine[0] == '\0' || szLine[0] == '0')
			return 0;
		Obey(menu, szLine);
	}
	return 0;
}
