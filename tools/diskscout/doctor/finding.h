// SPDX-License-Identifier: Apache-2.0
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

// What to do about an error that has to do with who asks, and not with what is asked; empty: it has not.
std::string advice_for(int error, const inherited_t &who);

inline findings_t advised(findings_t findings, const std::string &advice)
{
	for (finding_t &finding : findings)
		finding.advice = advice;
	return findings;
}

inline void append(findings_t &to, const findings_t &more)
{
	to.insert(to.end(), more.begin(), more.end());
}

#endif
