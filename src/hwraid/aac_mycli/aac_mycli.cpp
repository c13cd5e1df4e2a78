// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aac_mycli/aac_mycli.h"

#include "hwraid/aac_mycli/aac_menu.h"

#include <iterator>
#include <stdio.h>

static constexpr MenuRow SUB_MENUS[] = {
	{'1', [] { do_with_cmd_controller(); }}, {'2', [] { do_with_cmd_disk(); }},
	{'3', [] { do_with_cmd_container(); }},  {'4', [] { do_with_cmd_raid(); }},
	{'5', [] { do_with_cmd_task(); }},       {'6', [] { do_with_hsa_intreface(); }},
};

static constexpr Menu MAIN_MENU = {
	"1 - Controller  2 - Disk  3 - Container  4 - Raid  5 - task  6 Server Management Interface -- "
	"GetIntemInfo 0 - Quit\n",
	"Command>",
	"Unknown command!\n",
	SUB_MENUS,
	std::size(SUB_MENUS),
};

void printf_info()
{
	fputs(MAIN_MENU.lpszText, stderr);
}

// compat: no menu shows it; it is there for those who call it by its name.
void print_controller()
{
	fputs("------------------------------\n"
	      "|  1 ---- get controller list|\n"
	      "|  2 ---- get controller name|\n"
	      "|  0 ---- Quit controller!   |\n"
	      "------------------------------\n",
	      stderr);
}

// compat: unlike in a sub-menu an empty line is unknown, and what is unknown does not show the menu again.
// Keys that leave twice with Enter do not end the console.
int call_mycli()
{
	StartInput();
	for (bool bShowMenu = true; !InputEnded();) {
		char szLine[256];
		if (bShowMenu)
			printf_info();
		if (!AskText(MAIN_MENU.lpszPrompt, szLine, sizeof szLine) || szLine[0] == '0')
			break;
		bShowMenu = Obey(MAIN_MENU, szLine);
	}
	fputs("Bye!\n", stderr);
	return 0;
}
