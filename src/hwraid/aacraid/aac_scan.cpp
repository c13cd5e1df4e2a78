#include "hwraid/aacraid/aac_scan.h"

#include "hwraid/aacraid/aac_public.h"

#include <charconv>
#include <float.h>
#include <math.h>
#include <string.h>

static bool IsSpace(char c)
{
	return c == ' ' || (c >= '\t' && c <= '\r');
}

void FieldScan::SkipSpace()
{
	while (IsSpace(*m_p))
		m_p++;
}

FieldScan &FieldScan::Int(int *pnValue, int nWidth)
{
	if (m_bFailed)
		return *this;
	SkipSpace();
	const char *p = m_p;
	const char *lpszEnd = p + strnlen(p, static_cast<size_t>(nWidth));
	const bool bNegative = *p == '-';
	if (p != lpszEnd && (*p == '-' || *p == '+'))
		p++;
	m_bFailed = p == lpszEnd || !Is_0_9(*p);
	if (m_bFailed)
		return *this;
	const long long nLimit = bNegative ? -static_cast<long long>(INT_MIN) : INT_MAX;
	long long nMagnitude = 0;
	for (; p != lpszEnd && Is_0_9(*p); p++) {
		nMagnitude = nMagnitude * 10 + (*p - '0');
		if (nMagnitude > nLimit)
			nMagnitude = nLimit;
	}
	*pnValue = static_cast<int>(bNegative ? -nMagnitude : nMagnitude);
	m_p = p;
	return *this;
}

// Of a number beyond the range: whether it is too small, not too large.
static bool IsSmall(const char *lpszDigits, const char *lpszEnd)
{
	const auto nLength = static_cast<size_t>(lpszEnd - lpszDigits);
	return memchr(lpszDigits, '-', nLength) || lpszDigits[strspn(lpszDigits, "0")] == '.';
}

FieldScan &FieldScan::Float(float *pfValue)
{
	if (m_bFailed)
		return *this;
	SkipSpace();
	const char *p = *m_p == '+' ? m_p + 1 : m_p;
	// Not the words for infinity and for no number: the tool prints none.
	const char *lpszDigit = *p == '-' ? p + 1 : p;
	m_bFailed = !Is_0_9(*lpszDigit) && *lpszDigit != '.';
	if (m_bFailed)
		return *this;
	float fValue = 0;
	const auto parsed = std::from_chars(p, p + strlen(p), fValue);
	m_bFailed = parsed.ec == std::errc::invalid_argument;
	if (m_bFailed)
		return *this;
	if (parsed.ec == std::errc::result_out_of_range && !IsSmall(lpszDigit, parsed.ptr))
		fValue = *p == '-' ? -FLT_MAX : FLT_MAX;
	*pfValue = fValue;
	m_p = parsed.ptr;
	return *this;
}

FieldScan &FieldScan::Word(char *lpszWord, size_t nSize, int nWidth)
{
	if (m_bFailed)
		return *this;
	SkipSpace();
	m_bFailed = *m_p == '\0';
	size_t nLength = 0;
	for (; *m_p != '\0' && !IsSpace(*m_p) && nWidth > 0; nWidth--, m_p++)
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
