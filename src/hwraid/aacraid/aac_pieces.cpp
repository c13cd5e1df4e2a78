// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/aac_pieces.h"

#include <string.h>

static const char *SkipAll(const char *p, char c)
{
	while (*p == c)
		p++;
	return p;
}

// Where enough separators in a row begin at or behind p, or the end of the text.
const char *PieceWalk::FindSeparator(const char *p) const
{
	for (;;) {
		p = strchrnul(p, m_c);
		const char *lpszBehind = SkipAll(p, m_c);
		if (*p == '\0' || lpszBehind - p >= m_nTimes)
			return p;
		p = lpszBehind;
	}
}

bool PieceWalk::Next()
{
	if (!m_lpszStart) {
		m_lpszStart = m_lpszText;
		m_lpszEnd = FindSeparator(m_lpszStart);
		return true;
	}
	// Not the end of the piece before: this one sees a separator that begins within its first characters.
	// compat: that one does not, so that a piece shorter than its separator holds the next one, too.
	const char *lpszSeparator = FindSeparator(m_lpszStart);
	if (*lpszSeparator == '\0')
		return false;
	m_lpszStart = SkipAll(lpszSeparator, m_c);
	m_lpszEnd = FindSeparator(m_lpszStart + strnlen(m_lpszStart, static_cast<size_t>(m_nTimes)));
	return true;
}

void PieceWalk::Copy(char *lpszTo, size_t nSize) const
{
	const size_t nLength = Length() < nSize ? Length() : nSize - 1;
	memcpy(lpszTo, m_lpszStart, nLength);
	lpszTo[nLength] = '\0';
}
