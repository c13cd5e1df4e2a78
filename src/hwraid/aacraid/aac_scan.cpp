// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/aac_scan.h"

#include "base/text.h"

#include <charconv>
#include <limits>
#include <math.h>
#include <string.h>

void FieldScan::SkipSpace()
{
	while (is_white_space(*m_p))
		m_p++;
}

FieldScan &FieldScan::Int(int *pnValue, int nWidth)
{
	if (m_bFailed)
		return *this;
	SkipSpace();
	std::string_view field(m_p, strnlen(m_p, static_cast<size_t>(nWidth)));
	// compat: a number beyond its type is the nearest in it: what is too large looks like the largest.
	m_bFailed = !take_decimal(&field, pnValue);
	if (!m_bFailed)
		m_p = field.data();
	return *this;
}

// The power of ten that the first digit other than 0 stands for, as far as it matters: 2 for 512, -3 for
// 0.004.
static long long MagnitudeOf(const char *lpszNumber, const char *lpszEnd)
{
	long long nMagnitude = 0;
	const char *p = lpszNumber + (*lpszNumber == '-');
	while (*p == '0')
		p++;
	if (*p == '.') {
		for (p++; *p == '0'; p++)
			nMagnitude--;
		nMagnitude--;
	} else {
		nMagnitude = static_cast<long long>(strspn(p, "0123456789")) - 1;
	}
	while (p != lpszEnd && *p != 'e' && *p != 'E')
		p++;
	int nExponent = 0;
	if (p != lpszEnd)
		FieldScan(p + 1).Int(&nExponent);
	return nMagnitude + nExponent;
}

template <class Number> const char *ReadNumber(const char *lpszText, const char *lpszEnd, Number *pValue)
{
	constexpr Number LARGEST = std::numeric_limits<Number>::max();
	const bool bSigned = *lpszText == '-' || *lpszText == '+';
	// Not the words for infinity and for no number: the tool prints none.
	if (!is_digit(lpszText[bSigned]) && lpszText[bSigned] != '.')
		return nullptr;
	if (*lpszText == '+')
		lpszText++;
	Number value = 0;
	const auto parsed = std::from_chars(lpszText, lpszEnd, value);
	if (parsed.ec == std::errc::invalid_argument)
		return nullptr;
	if (parsed.ec == std::errc::result_out_of_range && MagnitudeOf(lpszText, parsed.ptr) > 0)
		value = *lpszText == '-' ? -LARGEST : LARGEST;
	*pValue = value;
	return parsed.ptr;
}

template const char *ReadNumber(const char *lpszText, const char *lpszEnd, float *pValue);
template const char *ReadNumber(const char *lpszText, const char *lpszEnd, double *pValue);

FieldScan &FieldScan::Float(float *pfValue)
{
	if (m_bFailed)
		return *this;
	SkipSpace();
	const char *lpszEnd = ReadNumber(m_p, m_p + strlen(m_p), pfValue);
	m_bFailed = lpszEnd == nullptr;
	if (!m_bFailed)
		m_p = lpszEnd;
	return *this;
}

FieldScan &FieldScan::Word(char *lpszWord, size_t nSize, int nWidth)
{
	if (m_bFailed)
		return *this;
	SkipSpace();
	m_bFailed = *m_p == '\0';
	size_t nLength = 0;
	for (; *m_p != '\0' && !is_white_space(*m_p) && nWidth > 0; nWidth--, m_p++)
		if (nLength + 1 < nSize)
			lpszWord[nLength++] = *m_p;
	if (!m_bFailed)
		lpszWord[nLength] = '\0';
	return *this;
}

FieldScan &FieldScan::SkipWord()
{
	char szDropped[1];
	return Word(szDropped);
}

FieldScan &FieldScan::Literal(char c)
{
	m_bFailed = m_bFailed || *m_p != c;
	if (!m_bFailed)
		m_p++;
	return *this;
}

int NearestInt(double dValue)
{
	if (isnan(dValue))
		return 0;
	return static_cast<int>(fmin(fmax(dValue, INT_MIN), INT_MAX));
}

long long NearestLong(double dValue)
{
	constexpr double LIMIT = 9223372036854775808.0; // one more than the largest
	if (isnan(dValue))
		return 0;
	if (dValue >= LIMIT)
		return LLONG_MAX;
	return dValue < -LIMIT ? LLONG_MIN : static_cast<long long>(dValue);
}
