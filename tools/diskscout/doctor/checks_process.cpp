// SPDX-License-Identifier: Apache-2.0
// What a process that asks the plug-ins gets from whoever starts it:
//
//   /proc/PID/limits   Max stack size            8388608              unlimited            bytes
//   /proc/PID/status   SigIgn:	0000000000001000
#include "checks_machine.h"

#include "inherited.h"
#include "kernel_lines.h"
#include "text.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fmt/format.h>

// The words behind this one in a line of the file, or why not.
struct line_told_t {
	std::optional<std::string> text = {};
	std::string failure = {};
};

static line_told_t line_of(pid_t pid, const char *file, std::string_view word)
{
	const std::string path = fmt::format("/proc/{}/{}", pid, file);
	lines_t lines(path);
	std::string line;
	while (lines.next(&line)) {
		if (line.compare(0, word.size(), word) != 0)
			continue;
		const std::size_t first = line.find_first_not_of(" \t", word.size());
		return {line.substr(std::min(first, line.size()))};
	}
	const char *const why = lines.error() ? strerror(lines.error()) : "it holds something else";
	return {{}, fmt::format("{} cannot be read: {}", path, why)};
}

findings_t look_at_children(const patient_t &at)
{
	if (!at.agent) {
		if (!at.inherited.ignores_children)
			return {};
		return {{verdict_t::WARNING,
		         "whoever started this program ignores SIGCHLD, and so does an agent "
		         "that it starts, where queries of the RAID side fail then"}};
	}
	const line_told_t line = line_of(*at.agent, "status", "SigIgn:");
	if (!line.text)
		return {{verdict_t::PROBLEM, line.failure}};
	unsigned long long ignored = 0;
	std::from_chars(line.text->data(), line.text->data() + line.text->size(), ignored, 16);
	if ((ignored >> (SIGCHLD - 1) & 1) == 0)
		return {};
	return {{verdict_t::PROBLEM,
	         fmt::format("process {} ignores SIGCHLD: queries of the RAID side fail there", *at.agent)}};
}

// A list keeps up to 1 MB there, and whoever asks for it needs room as well.
static findings_t judge_stack(const std::string &whose, std::size_t bytes)
{
	static constexpr std::size_t NEEDED = 2U << 20;
	if (bytes >= NEEDED)
		return {};
	return {{verdict_t::PROBLEM, fmt::format("the stack of {} ends at {}, queries need {}", whose,
	                                         human_size(bytes), human_size(NEEDED))}};
}

findings_t look_at_stack(const patient_t &at)
{
	if (!at.agent)
		return at.inherited.stack ? judge_stack("this process", *at.inherited.stack) : findings_t();
	const line_told_t line = line_of(*at.agent, "limits", "Max stack size");
	if (!line.text)
		return {{verdict_t::PROBLEM, line.failure}};
	std::size_t bytes = 0;
	const char *const end = line.text->data() + line.text->size();
	// "unlimited" is no number.
	if (std::from_chars(line.text->data(), end, bytes).ec != std::errc())
		return {};
	return judge_stack(fmt::format("process {}", *at.agent), bytes);
}
