// SPDX-License-Identifier: Apache-2.0
// What doctor has found, for people and for programs.
#include "findings.h"

#include "asking.h"
#include "document.h"
#include "output.h"
#include "program.h"

#include <algorithm>
#include <fmt/format.h>

static bool is_note(const told_finding_t &found)
{
	return found.finding.verdict == verdict_t::FINE && !found.finding.text.empty();
}

static bool is_of(verdict_t verdict, const told_finding_t &found)
{
	return found.finding.verdict == verdict && !(verdict == verdict_t::FINE && is_note(found));
}

static std::size_t count_of(verdict_t verdict, const told_findings_t &found)
{
	return static_cast<std::size_t>(
		std::count_if(found.begin(), found.end(), [&](const auto &f) { return is_of(verdict, f); }));
}

static int status_of(const told_findings_t &found)
{
	if (count_of(verdict_t::PROBLEM, found))
		return STATUS_FAILED;
	return count_of(verdict_t::WARNING, found) ? STATUS_WARNED : STATUS_FINE;
}

// ---- for people ----

static std::string lines_of(const told_finding_t &found, std::string_view word)
{
	return fmt::format("{}: {}.\n  {}.\n", word, found.finding.text, found.finding.advice);
}

// Checks, not findings: one may have several.
static std::size_t checks_in(const told_findings_t &found)
{
	std::size_t count = 0;
	const check_t *last = nullptr;
	for (const told_finding_t &f : found) {
		count += f.check != last ? 1 : 0;
		last = f.check;
	}
	return count;
}

static std::string counted(std::size_t count, const char *what)
{
	return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

// Not asked: for want of --raid, which the advice tells, or for a problem that stands before it.
static std::string unasked_in(const told_findings_t &found)
{
	const std::size_t unasked = count_of(verdict_t::NOT_ASKED, found);
	const auto of_tool =
		static_cast<std::size_t>(std::count_if(found.begin(), found.end(), [](const auto &f) {
			return f.finding.verdict == verdict_t::NOT_ASKED && !f.finding.advice.empty();
		}));
	std::string text;
	if (unasked > of_tool)
		text += fmt::format("; {} not asked for what stands before", unasked - of_tool);
	if (of_tool)
		text += fmt::format("; {} run the controller tool, and only with --raid", of_tool);
	return text;
}

static std::string summary_of(const told_findings_t &found)
{
	const std::size_t unasked = count_of(verdict_t::NOT_ASKED, found);
	const std::size_t problems = count_of(verdict_t::PROBLEM, found);
	const std::size_t warnings = count_of(verdict_t::WARNING, found);
	std::string verdict = "all fine";
	if (problems && warnings)
		verdict = counted(problems, "problem") + ", " + counted(warnings, "warning");
	else if (problems)
		verdict = counted(problems, "problem");
	else if (warnings)
		verdict = counted(warnings, "warning");
	return counted(checks_in(found) - unasked, "check") + ", " + verdict + unasked_in(found) + ".\n";
}

listing_t findings_as_text(const told_findings_t &found)
{
	std::string text;
	for (const verdict_t verdict : {verdict_t::PROBLEM, verdict_t::WARNING}) {
		for (const told_finding_t &f : found) {
			if (f.finding.verdict == verdict)
				text += lines_of(f, word_of(verdict));
		}
	}
	for (const told_finding_t &f : found) {
		if (is_note(f))
			text += lines_of(f, "note");
	}
	return {text + summary_of(found), status_of(found)};
}

// ---- for programs ----

static messages_t messages_of(const told_findings_t &found)
{
	const auto first = [&](verdict_t verdict, severity_t severity, code_t code) -> messages_t {
		const auto f = std::find_if(found.begin(), found.end(),
		                            [&](const auto &one) { return one.finding.verdict == verdict; });
		if (f == found.end())
			return {};
		return {{severity, nullptr, code, line_of(*f)}};
	};
	const messages_t problem = first(verdict_t::PROBLEM, severity_t::ERROR, code_t::PROBLEM_FOUND);
	return problem.empty() ? first(verdict_t::WARNING, severity_t::WARNING, code_t::WARNING_FOUND)
	                       : problem;
}

listing_t findings_as_document(const told_findings_t &found, enquiry_t &from, const host_names_t &host)
{
	document_t document(host);
	document.checks(found);
	messages_t messages = messages_of(found);
	for (const message_t &message : messages) {
		if (message.severity == severity_t::ERROR)
			complain(message.text);
	}
	for (message_t &told : left_behind(from))
		messages.push_back(std::move(told));
	const int status = status_of(found);
	return {document.end(messages, status), status};
}
