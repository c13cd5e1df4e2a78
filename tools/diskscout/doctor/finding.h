// What checks find, made fit for a reader: names of files and words of programs are anybody's.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_FINDING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_FINDING_H

#include "check.h"
#include "text.h"

inline findings_t one_finding(verdict_t verdict, const std::string &text)
{
	return {{verdict, printable(text)}};
}

inline findings_t problem(const std::string &text)
{
	return one_finding(verdict_t::PROBLEM, text);
}

inline findings_t warning(const std::string &text)
{
	return one_finding(verdict_t::WARNING, text);
}

inline findings_t not_asked(const std::string &text)
{
	return one_finding(verdict_t::NOT_ASKED, text);
}

inline void append(findings_t &to, const findings_t &more)
{
	to.insert(to.end(), more.begin(), more.end());
}

#endif
