// SPDX-License-Identifier: Apache-2.0
// What can be wrong with what tool and filter did.
#include "tool_rows.h"

#include "finding.h"

#include <cstring>
#include <fmt/format.h>

using end_t = tool_run_t::end_t;

static std::string tool_of(const tool_look_t &look)
{
	return "the controller tool" + (look.tool.empty() ? "" : " " + look.tool);
}

static std::string filter_of(const tool_look_t &look)
{
	return "the filter script " + look.filter;
}

// In its own words, where it has any.
static std::string with_saying(const std::string &text, const tool_run_t &run)
{
	return run.said.empty() ? text : fmt::format("{}: \"{}\"", text, run.said);
}

// ---- how a program ended, whichever it is ----

static findings_t judge_hanging(const tool_run_t &run, const std::string &who)
{
	if (run.end != end_t::TIMED_OUT)
		return {};
	return problem(fmt::format("{} {}", who, run.why));
}

static findings_t judge_signal(const tool_run_t &run, const std::string &who)
{
	if (run.end != end_t::KILLED)
		return {};
	return problem(fmt::format("{} was ended by signal {} ({})", who, run.number, strsignal(run.number)));
}

static findings_t judge_status(const tool_run_t &run, const std::string &who)
{
	if (run.end != end_t::ENDED || run.number == 0)
		return {};
	return problem(with_saying(fmt::format("{} ends with status {}", who, run.number), run));
}

// ---- the tool ----

findings_t not_started(const tool_look_t &look)
{
	if (look.tool_run.end == end_t::NOT_STARTED)
		return problem(fmt::format("{} was not run: {}", tool_of(look), look.tool_run.why));
	if (look.filter_run.end == end_t::NOT_STARTED)
		return problem(fmt::format("{} was not run: {}", filter_of(look), look.filter_run.why));
	return {};
}

findings_t tool_hangs(const tool_look_t &look)
{
	return judge_hanging(look.tool_run, tool_of(look));
}

findings_t tool_killed(const tool_look_t &look)
{
	return judge_signal(look.tool_run, tool_of(look));
}

// Of what stands before the tool; the tool itself did not come to say anything.
static bool is_said_by_wrapper(const tool_run_t &run)
{
	static const std::string_view NAME = "diskscout-limit: ";
	return run.said.compare(0, NAME.size(), NAME) == 0;
}

findings_t tool_status(const tool_look_t &look)
{
	return advised(judge_status(look.tool_run, tool_of(look)),
	               is_said_by_wrapper(look.tool_run)
	                       ? "look with ps what the tool waits for and who else uses the controller; "
	                         "diskscout-limit.cfg has the limits"
	                       : "");
}

findings_t tool_endless(const tool_look_t &look)
{
	if (look.tool_run.end != end_t::ENDLESS)
		return {};
	return problem(
		fmt::format("{} prints more than {} MiB and goes on", tool_of(look), ENDLESS_OUTPUT >> 20));
}

findings_t tool_silent(const tool_look_t &look)
{
	if (!look.tool_run.output.empty())
		return {};
	return problem(with_saying(tool_of(look) + " prints nothing", look.tool_run));
}

findings_t tool_foreign(const tool_look_t &look)
{
	if (look.has_echo)
		return {};
	return problem(fmt::format("the answer of {} does not come from a tool of this kind: it has no line "
	                           "\"Executing: controller list\"",
	                           tool_of(look)));
}

findings_t tool_cut(const tool_look_t &look)
{
	if (look.has_end)
		return {};
	return problem(
		fmt::format("the answer of {} is cut: it has no line \"Executing: exit\"", tool_of(look)));
}

findings_t tool_refuses(const tool_look_t &look)
{
	if (look.error.empty())
		return {};
	return problem(fmt::format("{} cannot list the controllers: {}", tool_of(look), look.error));
}

findings_t tool_leaves_processes(const tool_look_t &look)
{
	if (look.tool_run.left == 0)
		return {};
	return warning(fmt::format(
		"{} leaves {} behind when it ends", tool_of(look),
		look.tool_run.left == 1 ? "a process" : fmt::format("{} processes", look.tool_run.left)));
}

// ---- the filter ----

findings_t filter_hangs(const tool_look_t &look)
{
	return judge_hanging(look.filter_run, filter_of(look));
}

findings_t filter_killed(const tool_look_t &look)
{
	return judge_signal(look.filter_run, filter_of(look));
}

findings_t filter_status(const tool_look_t &look)
{
	return judge_status(look.filter_run, filter_of(look));
}

findings_t filter_silent(const tool_look_t &look)
{
	if (!look.filter_run.is_fine())
		return {};
	if (!look.filter_run.has_output)
		return problem(filter_of(look) + " does not make the file that its second word names");
	return look.filter_run.output.empty() ? problem(filter_of(look) + " writes nothing") : findings_t();
}

findings_t answer_without_echo(const tool_look_t &look)
{
	static const std::string ECHO = "Executing: controller list";
	const std::string &answer = look.filter_run.output;
	if (!look.filter_run.is_fine() || answer.compare(0, ECHO.size(), ECHO) == 0 ||
	    answer.find("\n" + ECHO) != std::string::npos)
		return {};
	return problem(fmt::format("{} loses the line \"{}\"", filter_of(look), ECHO));
}

findings_t answer_with_paint(const tool_look_t &look)
{
	if (!look.filter_run.is_fine() || look.filter_run.output.find('\033') == std::string::npos)
		return {};
	return problem(filter_of(look) + " leaves the sequences of a terminal in the answer");
}

findings_t answer_too_long(const tool_look_t &look)
{
	constexpr std::size_t LONGEST = 1 << 20;
	const std::size_t length = look.filter_run.output.size();
	if (look.filter_run.end == end_t::ENDLESS)
		return problem(fmt::format("{} writes more than {} MiB and goes on", filter_of(look),
		                           ENDLESS_OUTPUT >> 20));
	if (length <= LONGEST)
		return {};
	return problem(fmt::format("the answer to \"controller list\" has {} bytes: more than 1 MiB is not "
	                           "read of a list of containers",
	                           length));
}
