// SPDX-License-Identifier: Apache-2.0
// What the other end of standard output can show.
#include "terminal.h"

#include <cstring>
#include <langinfo.h>
#include <locale.h>
#include <sys/ioctl.h>

std::optional<std::size_t> terminal_columns(int descriptor)
{
	winsize size = {};
	if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
		return std::nullopt;
	return size.ws_col;
}

bool writes_utf8()
{
	const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
	// One that is not installed: whoever asked for it sees what every terminal shows.
	if (!locale)
		return false;
	const bool is_utf8 = strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
	freelocale(locale);
	return is_utf8;
}
