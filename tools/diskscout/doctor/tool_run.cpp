// SPDX-License-Identifier: Apache-2.0
// One command of a site, run and watched. The worker that does it writes down what happened; what the output
// means is found out by whoever waits for it.
#include "tool_run.h"

#include "process_tree.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

static const char SCRIPT[] = "doctor-script", ERRORS[] = "doctor-errors";

// ---- in the worker ----

namespace
{
struct actions_t {
	actions_t() { posix_spawn_file_actions_init(&of_file); }
	~actions_t() { posix_spawn_file_actions_destroy(&of_file); }
	actions_t(const actions_t &) = delete;
	actions_t &operator=(const actions_t &) = delete;
	posix_spawn_file_actions_t of_file;
};
} // namespace

static pid_t start_shell(const std::string &command)
{
	actions_t actions;
	posix_spawn_file_actions_addopen(&actions.of_file, STDERR_FILENO, ERRORS,
	                                 O_WRONLY | O_CREAT | O_TRUNC, 0600);
	char shell[] = "sh", option[] = "-c";
	std::string text = command;
	char *arguments[] = {shell, option, text.data(), nullptr};
	pid_t started = -1;
	const int error = posix_spawn(&started, "/bin/sh", &actions.of_file, nullptr, arguments, environ);
	if (error != 0)
		throw std::runtime_error(fmt::format("/bin/sh cannot be started: {}", strerror(error)));
	return started;
}

static void write_own_file(const char *name, const std::string &text)
{
	unlink(name);
	const int file = open(name, O_CREAT | O_EXCL | O_CLOEXEC | O_WRONLY, 0600);
	const bool is_made = file >= 0;
	const bool is_written =
		is_made && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
	const int error = errno;
	if (is_made)
		close(file);
	if (!is_written)
		throw std::runtime_error(
			fmt::format("the files of a run cannot be written: {}", strerror(error)));
}

static std::uint64_t size_of(const char *file)
{
	struct stat status;
	return stat(file, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

// False when it prints without an end.
static bool wait_for(pid_t shell, const char *output, int &status)
{
	for (;;) {
		const pid_t ended = waitpid(shell, &status, WNOHANG);
		if (ended == shell)
			return true;
		if (ended < 0 && errno != EINTR)
			throw std::runtime_error(fmt::format("how it ended is lost: {}", strerror(errno)));
		if (size_of(output) > ENDLESS_OUTPUT)
			return false;
		std::this_thread::sleep_for(std::chrono::milliseconds(5));
	}
}

// A child that is about to end as well is none that is left.
static std::uint64_t count_left()
{
	constexpr int TIMES = 20;
	std::uint64_t left = descendants().size();
	for (int i = 0; i < TIMES && left > 0; i++) {
		std::this_thread::sleep_for(std::chrono::milliseconds(10));
		left = descendants().size();
	}
	return left;
}

static std::string text_of_file(const char *name, std::uint64_t most)
{
	std::string text(std::min(size_of(name), most), '\0');
	std::ifstream file(name, std::ios::binary);
	file.read(text.data(), static_cast<std::streamsize>(text.size()));
	text.resize(static_cast<std::size_t>(file.gcount()));
	return text;
}

namespace
{
// In front of the output; behind it stands what it said.
struct report_t {
	tool_run_t::end_t end;
	int number;
	std::uint64_t left, output;
	bool has_output;
};
} // namespace

static void do_run(const tool_command_t &command, const worker_link_t &to)
{
	constexpr std::uint64_t LONGEST_SAYING = 4096;
	// The tool paints a terminal and wants one that it knows.
	setenv("TERM", "linux", 1);
	unlink(command.output);
	if (!command.script.empty())
		write_own_file(SCRIPT, command.script);
	report_t report = {};
	int status = 0;
	const bool has_ended = wait_for(start_shell(command.text), command.output, status);
	report.end = !has_ended            ? tool_run_t::end_t::ENDLESS
	             : WIFSIGNALED(status) ? tool_run_t::end_t::KILLED
	                                   : tool_run_t::end_t::ENDED;
	report.number = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
	report.left = has_ended ? count_left() : 0;
	report.has_output = access(command.output, F_OK) == 0;
	const std::string output = text_of_file(command.output, ENDLESS_OUTPUT);
	report.output = output.size();
	std::string bytes(reinterpret_cast<const char *>(&report), sizeof report);
	to.result(bytes + output + text_of_file(ERRORS, LONGEST_SAYING));
}

// ---- who waits for it ----

static std::string first_line(std::string_view text)
{
	static const char WHITE_SPACE[] = " \t\r\n";
	const std::size_t from = std::min(text.find_first_not_of(WHITE_SPACE), text.size());
	text = text.substr(from, text.find('\n', from) - from);
	return std::string(text.substr(0, text.find_last_not_of(WHITE_SPACE) + 1));
}

// Where a shell stands between, the end by a signal is a status.
static void see_signal_in_status(tool_run_t &run)
{
	constexpr int FROM = 128, MOST = 64;
	if (run.end != tool_run_t::end_t::ENDED || run.number <= FROM || run.number > FROM + MOST)
		return;
	run.end = tool_run_t::end_t::KILLED;
	run.number -= FROM;
}

tool_run_t run_command(enquiry_t &from, const tool_command_t &command)
{
	const worked_t worked = from.work(command.stage, enquiry_t::place_t::PRIVATE,
	                                  [&](const worker_link_t &to) { do_run(command, to); });
	tool_run_t run;
	report_t report;
	if (!worked.is_done || worked.text().size() < sizeof report) {
		run.end = worked.is_timed_out ? tool_run_t::end_t::TIMED_OUT : tool_run_t::end_t::NOT_STARTED;
		run.why = worked.failure;
		return run;
	}
	std::string_view text = worked.text();
	memcpy(&report, text.data(), sizeof report);
	text.remove_prefix(sizeof report);
	run.end = report.end;
	run.number = report.number;
	run.left = report.left;
	run.has_output = report.has_output;
	run.output = text.substr(0, report.output);
	run.said = first_line(text.substr(std::min<std::size_t>(report.output, text.size())));
	see_signal_in_status(run);
	return run;
}
