// SPDX-License-Identifier: Apache-2.0
// What can be wrong with the controllers: what the tool says when it opens them.
#include "finding.h"
#include "tool_rows.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

// The tool's words; what is in none of these rows is refused for another reason.
static const char HELD[] = "<Another application has opened th";
static const char WRONG_TYPE[] = "<The requested controller is of the wrong type";
static const char MISSING[] = "<The requested controller does not exist";

static bool holds(const std::string &text, const char *part)
{
	return text.find(part) != std::string::npos;
}

// Nothing is known of those that there was no time for.
static findings_t of_all(const tool_look_t &look, const findings_t &found)
{
	if (found.empty() && look.is_out_of_time)
		return not_asked("no time was left to open every controller");
	return found;
}

static findings_t of_those_with(const tool_look_t &look, const char *words, const char *text)
{
	findings_t found;
	for (const controller_opening_t &opening : look.openings) {
		if (holds(opening.error, words))
			append(found, problem(fmt::format(text, opening.name)));
	}
	return of_all(look, found);
}

static std::string names_of(const std::vector<std::string> &controllers)
{
	std::string names;
	for (const std::string &name : controllers)
		names += (names.empty() ? "" : ", ") + name;
	return names;
}

findings_t no_controller(const tool_look_t &look)
{
	if (!look.controllers.empty())
		return {};
	return problem(fmt::format("the controller tool {} lists no controller", look.tool));
}

findings_t controller_missing(const tool_look_t &look)
{
	const auto &listed = look.controllers;
	if (!look.named.empty() && std::find(listed.begin(), listed.end(), look.named) == listed.end())
		return problem(fmt::format("there is no controller \"{}\", there is {}", look.named,
		                           names_of(listed)));
	return of_those_with(look, MISSING,
	                     "controller {} is listed, and cannot be opened: it does not exist");
}

findings_t controller_held(const tool_look_t &look)
{
	return of_those_with(look, HELD, "another program holds controller {}");
}

findings_t controller_of_wrong_type(const tool_look_t &look)
{
	return of_those_with(look, WRONG_TYPE, "controller {} is of a type that the tool does not drive");
}

static std::string refusal_of(const controller_opening_t &opening)
{
	using end_t = tool_run_t::end_t;
	const tool_run_t &run = opening.run;
	if (run.end == end_t::TIMED_OUT || run.end == end_t::NOT_STARTED)
		return run.why;
	if (run.end == end_t::KILLED)
		return fmt::format("the tool was ended by signal {} ({})", run.number, strsignal(run.number));
	if (!run.is_fine())
		return fmt::format("the tool ends with status {}", run.number);
	if (!opening.error.empty())
		return opening.error;
	return opening.has_end ? "" : "the tool's answer is cut";
}

findings_t controller_refused(const tool_look_t &look)
{
	findings_t found;
	for (const controller_opening_t &opening : look.openings) {
		const std::string refusal = refusal_of(opening);
		const bool is_known = holds(opening.error, HELD) || holds(opening.error, WRONG_TYPE) ||
		                      holds(opening.error, MISSING);
		if (!refusal.empty() && !is_known)
			append(found, problem(fmt::format("controller {} cannot be opened: {}", opening.name,
			                                  refusal)));
	}
	return of_all(look, found);
}
