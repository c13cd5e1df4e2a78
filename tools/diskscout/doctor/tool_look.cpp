// SPDX-License-Identifier: Apache-2.0
// One look at what the controller tool and the filter of a site do.
#include "tool_look.h"

#include "site.h"
#include "tool_answer.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>

static const char RAW[] = "doctor-raw", FILTERED[] = "doctor-filtered", SCRIPT[] = "doctor-script";
// As the plug-in ends its scripts: blanks answer the pager, and may be swallowed.
static const char END_OF_SCRIPT[] = "                                          \n    \nexit\n";

// ---- the configuration ----

static std::string first_problem(const patient_t &at)
{
	for (std::size_t i = 0; i < SITE_CHECKS.count; i++) {
		const check_t &check = SITE_CHECKS.first[i];
		if (!(check.concerns & RAID_FAILED))
			continue;
		for (const finding_t &found : check.look(at)) {
			if (found.verdict == verdict_t::PROBLEM)
				return found.text;
		}
	}
	return "";
}

namespace
{
struct commands_t {
	std::string failure; // why they are not known
	std::string obstacle, tool, filter;
};
} // namespace

// Files may lie where reading does not come to an end.
static commands_t commands_of(const patient_t &at)
{
	const worked_t worked =
		at.from.work("the configuration", enquiry_t::place_t::HERE, [&](const worker_link_t &to) {
			patient_t asked = at;
			asked.asks_tool = true;
			const std::string obstacle = first_problem(asked);
			const auto config = site_of(asked).config.value_or(tool_config_t());
			to.result(obstacle + '\0' + config.tool() + '\0' + config.filter);
		});
	if (!worked.is_done)
		return {worked.failure, "", "", ""};
	const std::string text(worked.text());
	const std::size_t first = text.find('\0'), second = text.find('\0', first + 1);
	return {"", text.substr(0, first), text.substr(first + 1, second - first - 1),
	        text.substr(second + 1)};
}

// ---- runs ----

// A limit that can be told: tenths of seconds.
static std::chrono::milliseconds rounded(std::chrono::milliseconds limit)
{
	constexpr std::chrono::milliseconds TENTH(100);
	return limit < TENTH ? limit : limit / TENTH * TENTH;
}

namespace
{
// One limit for several runs.
class limited_t
{
public:
	explicit limited_t(enquiry_t &from)
	    : from_(from), before_(from.limit()), limit_(rounded(before_)), end_(clock_type::now() + limit_)
	{
	}
	~limited_t() { from_.set_limit(before_); }
	limited_t(const limited_t &) = delete;
	limited_t &operator=(const limited_t &) = delete;

	tool_run_t run(const tool_command_t &command)
	{
		if (limit_.count() > 0)
			from_.set_limit(std::max(left(), std::chrono::milliseconds(1)));
		const auto begin = clock_type::now();
		tool_run_t run = run_command(from_, command);
		slowest_ = std::max(slowest_, clock_type::now() - begin);
		// What it had was what the others had left of it.
		if (run.end == tool_run_t::end_t::TIMED_OUT)
			run.why = fmt::format("timed out after {} at {}", in_seconds(limit_), command.stage);
		return run;
	}
	// For one that is as slow as those before: else it would only be told that it hangs.
	bool has_time() const { return limit_.count() == 0 || left() > 2 * slowest_; }

private:
	using clock_type = std::chrono::steady_clock;
	std::chrono::milliseconds left() const
	{
		return std::chrono::duration_cast<std::chrono::milliseconds>(end_ - clock_type::now());
	}

	enquiry_t &from_;
	const std::chrono::milliseconds before_, limit_;
	clock_type::time_point end_;
	clock_type::duration slowest_ = {};
};
} // namespace

static tool_run_t run_tool(limited_t &limited, const tool_look_t &look, const char *stage,
                           const std::string &commands)
{
	return limited.run(
		{stage, fmt::format("{} <{} >{}", look.tool, SCRIPT, RAW), RAW, commands + END_OF_SCRIPT});
}

static void list_controllers(limited_t &limited, tool_look_t &look)
{
	look.tool_run = run_tool(limited, look, "controller list", "controller list\n");
	const std::string answer = without_paint(look.tool_run.output);
	look.has_echo = has_echo(answer, "controller list");
	look.has_end = has_echo(answer, "exit");
	look.error = error_in(answer);
	if (!look.has_answer() || !look.error.empty())
		return;
	look.filter_run = limited.run(
		{"the filter script", fmt::format("{} {} {}", look.filter, RAW, FILTERED), FILTERED, ""});
	if (look.filter_run.is_fine())
		look.controllers = controllers_in(look.filter_run.output);
}

// Whoever could write a command of his own into a name is not asked with it.
static bool is_plain(const std::string &name)
{
	return std::none_of(name.begin(), name.end(), [](char c) { return c >= '\0' && c < ' '; });
}

static void open_controllers(limited_t &limited, tool_look_t &look)
{
	constexpr std::size_t MOST = 16;
	for (const std::string &name : look.controllers) {
		const bool is_meant = look.named.empty() || look.named == name;
		if (!is_meant || !is_plain(name) || look.openings.size() >= MOST)
			continue;
		if (!limited.has_time()) {
			look.is_out_of_time = true;
			return;
		}
		controller_opening_t opening;
		opening.name = name;
		opening.run = run_tool(limited, look, "open", fmt::format("open {}\n", name));
		const std::string answer = without_paint(opening.run.output);
		opening.error = error_in(answer);
		opening.has_end = has_echo(answer, "exit");
		look.openings.push_back(opening);
		if (opening.run.end != tool_run_t::end_t::ENDED)
			return;
	}
}

tool_look_t look_at_tool(const patient_t &at)
{
	tool_look_t look;
	limited_t limited(at.from);
	const commands_t commands = commands_of(at);
	if (!commands.failure.empty()) {
		look.tool_run.end = tool_run_t::end_t::NOT_STARTED;
		look.tool_run.why = commands.failure;
		return look;
	}
	look.obstacle = commands.obstacle;
	look.tool = commands.tool;
	look.filter = commands.filter;
	look.named = at.from.named_controller();
	if (!look.obstacle.empty())
		return look;
	list_controllers(limited, look);
	open_controllers(limited, look);
	return look;
}
