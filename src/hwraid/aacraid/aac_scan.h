// SPDX-License-Identifier: Apache-2.0
// Reads the fields of a row in turn, under every locale alike. White space before a number or a word is
// skipped. A field that does not fit its kind ends the reading: it and all behind it keep what they held.
#ifndef DISKSCOUT_HWRAID_AAC_SCAN_H
#define DISKSCOUT_HWRAID_AAC_SCAN_H

#include <limits.h>
#include <stddef.h>

class FieldScan
{
public:
	explicit FieldScan(const char *lpszRow) : m_p(lpszRow) {}

	// Decimal, of at most nWidth characters; a number beyond the type's range is the nearest one in it.
	FieldScan &Int(int *pnValue, int nWidth = INT_MAX);
	// Single precision: so the sizes of the tables have always been read.
	FieldScan &Float(float *pfValue);
	// Up to the next white space, but nWidth characters at most; what does not fit the field is dropped.
	template <size_t size> FieldScan &Word(char (&szWord)[size], int nWidth = INT_MAX)
	{
		return Word(szWord, size, nWidth);
	}
	FieldScan &SkipWord();
	FieldScan &Literal(char c);
	bool IsGood() const { return !m_bFailed; }

private:
	FieldScan &Word(char *lpszWord, size_t nSize, int nWidth);
	void SkipSpace();

	const char *m_p;
	bool m_bFailed = false;
};

// Reads a number without blanks before it, of type float or double; one beyond the type's range is the
// nearest in it. Returns where it ends, or null when there is none.
template <class Number> const char *ReadNumber(const char *lpszText, const char *lpszEnd, Number *pValue);

// The nearest int to a number, rounded towards 0; 0 when it is none.
int NearestInt(double dValue);
long long NearestLong(double dValue);

#endif
