// SPDX-License-Identifier: Apache-2.0
// All checks, one after the other. Each is work that may hang: none may take more than half of the time that
// is left, so that there is some for those behind it.
#include "examination.h"

#include "inherited.h"
#include "kind_sets.h"
#include "text.h"
#include "tool_look.h"

#include "diskscout_block.h"

#include <algorithm>
#include <fmt/format.h>

using clock_type = std::chrono::steady_clock;
using std::chrono::milliseconds;

namespace
{

class time_left_t
{
public:
	explicit time_left_t(milliseconds limit) : limit_(limit), end_(clock_type::now() + limit) {}

	bool is_over() const { return limit_.count() > 0 && clock_type::now() >= end_; }
	milliseconds share() const
	{
		if (limit_.count() == 0)
			return limit_;
		const auto left = std::chrono::duration_cast<milliseconds>(end_ - clock_type::now());
		return std::max(left / 2, milliseconds(1));
	}
	// Nearly all of it, for what nothing comes behind that takes long.
	milliseconds rest() const { return limit_.count() == 0 ? limit_ : share() * 9 / 5; }

private:
	milliseconds limit_;
	clock_type::time_point end_;
};

} // namespace

// ---- findings as bytes ----

static std::string packed(const findings_t &findings)
{
	std::string bytes;
	for (const finding_t &finding : findings) {
		bytes += static_cast<char>(finding.verdict);
		bytes += finding.text;
		bytes += '\0';
		bytes += finding.advice;
		bytes += '\0';
	}
	return bytes;
}

static std::string next_text(std::string_view *bytes)
{
	std::string text(bytes->substr(0, bytes->find('\0')));
	bytes->remove_prefix(std::min(text.size() + 1, bytes->size()));
	return text;
}

static findings_t unpacked(std::string_view bytes)
{
	findings_t findings;
	while (!bytes.empty()) {
		const auto verdict = static_cast<verdict_t>(bytes[0]);
		bytes.remove_prefix(1);
		const std::string text = next_text(&bytes);
		findings.push_back({verdict, text, next_text(&bytes)});
	}
	return findings;
}

// ---- one check ----

static const char UNANSWERED_ADVICE[] =
	"look for a device or a mount that hangs, or give it more time with --timeout";

static told_finding_t unanswered(const check_t &check, const std::string &why)
{
	return {&check,
	        {verdict_t::WARNING, fmt::format("{} could not be answered: {}", check.word, why),
	         UNANSWERED_ADVICE}};
}

static told_findings_t told(const check_t &check, const findings_t &findings)
{
	told_findings_t found;
	for (const finding_t &finding : findings) {
		const bool is_asked = finding.verdict != verdict_t::NOT_ASKED;
		const std::string advice = finding.advice.empty() ? check.advice : printable(finding.advice);
		found.push_back({&check, {finding.verdict, printable(finding.text), is_asked ? advice : ""}});
	}
	if (found.empty())
		found.push_back({&check, {verdict_t::FINE, ""}});
	return found;
}

static told_findings_t look(const check_t &check, const patient_t &at, const time_left_t &time)
{
	if (check.runs_tool && !at.asks_tool)
		return {{&check,
		         {verdict_t::NOT_ASKED, "the controller tool was not run",
		          "diskscout doctor --raid runs it"}}};
	// What was seen of the tool is judged in no time.
	if (check.runs_tool && at.tool)
		return told(check, check.look(at));
	if (time.is_over())
		return {unanswered(check, "no time was left")};
	at.from.set_limit(time.share());
	const worked_t worked =
		at.from.work(check.word, enquiry_t::place_t::HERE,
	                     [&](const worker_link_t &to) { to.result(packed(check.look(at))); });
	return worked.is_done ? told(check, unpacked(worked.text()))
	                      : told_findings_t{unanswered(check, worked.failure)};
}

// The tool is run once, before the first of the checks of what it did.
class looked_at_t
{
public:
	looked_at_t(const patient_t &at, const time_left_t &time) : at_(at), time_(time) {}

	told_findings_t look_for(const check_t &check)
	{
		// A plug-in that does not tell its configuration does not tell its tool.
		at_.asks_tool &= !check.runs_tool || !at_.from.configuration().empty();
		if (check.runs_tool && at_.asks_tool && !seen_ && !time_.is_over()) {
			at_.from.set_limit(time_.rest());
			at_.tool = &seen_.emplace(look_at_tool(at_));
		}
		return look(check, at_, time_);
	}

private:
	patient_t at_;
	const time_left_t &time_;
	std::optional<tool_look_t> seen_;
};

// A worker sees the lists that were asked before, and what it asks itself is gone with it.
static void ask_local_lists(enquiry_t &from, const time_left_t &time)
{
	from.set_limit(time.share());
	from.block_list(CMD_GET_BLOCK_DEVICES);
	for (const UINT query : {CMD_GET_DISKS, CMD_GET_PARTITIONS, CMD_GET_CDROMS}) {
		from.set_limit(time.share());
		from.list(query);
	}
}

std::string_view word_of(verdict_t verdict)
{
	static constexpr std::string_view WORDS[] = {"fine", "warning", "problem", "not asked"};
	return WORDS[static_cast<std::size_t>(verdict)];
}

std::string line_of(const told_finding_t &found)
{
	return fmt::format("{}; {}", found.finding.text, found.finding.advice);
}

std::vector<const check_t *> all_checks()
{
	std::vector<const check_t *> checks;
	for (const checks_t *table : {&MACHINE_CHECKS, &SITE_CHECKS, &TOOL_CHECKS}) {
		for (std::size_t i = 0; i < table->count; i++)
			checks.push_back(table->first + i);
	}
	return checks;
}

told_findings_t examine(const patient_t &at, milliseconds limit)
{
	const time_left_t time(limit);
	ask_local_lists(at.from, time);
	looked_at_t looked(at, time);
	told_findings_t found;
	for (const check_t *check : all_checks()) {
		for (told_finding_t &finding : looked.look_for(*check))
			found.push_back(std::move(finding));
	}
	return found;
}

// ---- what a list is told ----

static unsigned concern_of(const kind_t *kind)
{
	if (kind == &DISKS_KIND)
		return DISKS_SHORT;
	if (kind == &PARTITIONS_KIND)
		return PARTITIONS_SHORT;
	if (kind == &CDROMS_KIND)
		return CDROMS_SHORT;
	return is_block(kind) ? +DEVICES_FAILED : +RAID_FAILED;
}

static std::string names_of(const std::vector<const aac_controller *> &controllers)
{
	std::string names;
	for (const aac_controller *c : controllers)
		names += (names.empty() ? "" : ", ") + text_of(c->Adapter_Name);
	return names;
}

// Nobody is ill when somebody asks for a controller that there is not.
static std::string controller_not_there(enquiry_t &from)
{
	const std::string name = from.controller().value_or("");
	if (name.empty() || from.controllers().failed())
		return "";
	const auto controllers = from.controllers().records<aac_controller>();
	const bool is_there = std::any_of(controllers.begin(), controllers.end(),
	                                  [&](const auto *c) { return text_of(c->Adapter_Name) == name; });
	if (is_there)
		return "";
	if (controllers.empty())
		return "no RAID controller was found";
	return fmt::format("there is no controller \"{}\", there is {}", name, names_of(controllers));
}

// A problem before a warning before a note.
static bool outweighs(const told_finding_t &one, const told_finding_t &other)
{
	return static_cast<int>(one.finding.verdict) > static_cast<int>(other.finding.verdict) ||
	       other.finding.text.empty();
}

static told_finding_t leading(unsigned concerns, const patient_t &at, const time_left_t &time)
{
	looked_at_t looked(at, time);
	told_finding_t best = {nullptr, {verdict_t::FINE, ""}};
	for (const check_t *check : all_checks()) {
		if ((check->concerns & concerns) == 0)
			continue;
		for (told_finding_t &found : looked.look_for(*check)) {
			const bool says =
				found.finding.verdict != verdict_t::NOT_ASKED && !found.finding.text.empty();
			if (says && outweighs(found, best))
				best = std::move(found);
		}
		if (best.finding.verdict == verdict_t::PROBLEM)
			break;
	}
	return best;
}

// It would hang again: what it has just done is enough to know.
static finding_t hung(const item_list_t &controllers)
{
	return {verdict_t::PROBLEM,
	        fmt::format("the controller tool or the filter {}; diskscout doctor --raid tells which, and "
	                    "--timeout allows more time",
	                    controllers.failure())};
}

static constexpr unsigned LOCAL_LISTS = DISKS_SHORT | PARTITIONS_SHORT | CDROMS_SHORT;

// What is judged of the classic lists is judged beside today's.
static unsigned askable(const enquiry_t &from)
{
	if (from.has_classic() && from.has_block())
		return ANY_LIST;
	return from.has_classic() ? +RAID_FAILED : +DEVICES_FAILED;
}

finding_t leading_finding(const kinds_t &kinds, enquiry_t &from)
{
	unsigned concerns = 0;
	for (const kind_t *kind : kinds)
		concerns |= concern_of(kind);
	concerns &= askable(from);
	const bool is_raid = (concerns & RAID_FAILED) != 0;
	if (is_raid) {
		const std::string lacking = controller_not_there(from);
		if (!lacking.empty())
			return {verdict_t::PROBLEM, lacking};
	}
	const bool has_hung = is_raid && from.controllers().timed_out();
	const milliseconds limit = from.limit();
	const time_left_t time(limit);
	if (concerns & LOCAL_LISTS)
		ask_local_lists(from, time);
	const told_finding_t best =
		leading(concerns, {from, inherited(), std::nullopt, is_raid && !has_hung}, time);
	from.set_limit(limit);
	if (has_hung && best.finding.verdict != verdict_t::PROBLEM)
		return hung(from.controllers());
	if (best.finding.text.empty())
		return {verdict_t::FINE, ""};
	return {best.finding.verdict, line_of(best)};
}
