// SPDX-License-Identifier: Apache-2.0
// The pieces of a text: lines, paragraphs, columns. Walking all of a text takes time in proportion to its
// length.
#ifndef DISKSCOUT_HWRAID_AAC_PIECES_H
#define DISKSCOUT_HWRAID_AAC_PIECES_H

#include <stddef.h>

// Pieces of a text that nTimes (from 1) or more of the character c separate. The first begins where the text
// begins, even with a separator.
class PieceWalk
{
public:
	PieceWalk(const char *lpszText, char c, int nTimes) : m_lpszText(lpszText), m_c(c), m_nTimes(nTimes)
	{
	}

	bool Next();
	const char *Start() const { return m_lpszStart; }
	size_t Length() const { return static_cast<size_t>(m_lpszEnd - m_lpszStart); }
	// Copies as much of the piece as fits beside a NUL.
	void Copy(char *lpszTo, size_t nSize) const;

private:
	const char *FindSeparator(const char *p) const;

	const char *m_lpszText;
	const char *m_lpszStart = nullptr;
	const char *m_lpszEnd = nullptr;
	char m_c;
	int m_nTimes;
};

#endif
