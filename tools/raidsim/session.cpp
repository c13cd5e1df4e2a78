// SPDX-License-Identifier: Apache-2.0
// One run of the tool.
#include "session.h"

#include "state_file.h"
#include "text.h"

session_t::session_t(const faults_t &wanted, std::string state_path, std::string script)
    : wanted_(wanted), state_path_(std::move(state_path)), input_(std::move(script)), screen_(wanted, input_),
      now_(load_state(state_path_))
{
}

std::string session_t::prompt_name() const
{
	return opened_ < 0 ? "CLI" : upper_case(now_.controllers[static_cast<std::size_t>(opened_)].name);
}

std::vector<std::string> session_t::carry_out(const action_t &row, const command_t &what)
{
	// A refused command leaves nothing behind, however far it came.
	context_t at = {now_, opened_, wanted_, {}};
	require_controller(row, at);
	row.run(at, what);
	if (row.changes)
		save_state(state_path_, at.all);
	now_ = std::move(at.all);
	opened_ = at.opened;
	return at.answer;
}

void session_t::obey(const std::string &line)
{
	const std::vector<token_t> tokens = tokens_of(line);
	std::string echo(trimmed(line));
	std::vector<std::string> answer;
	try {
		const action_t &row = action_of(tokens);
		const command_t what = command_of(row, tokens);
		echo = what.echo();
		ended_ = row.run == nullptr;
		if (!ended_)
			answer = carry_out(row, what);
	} catch (const refusal_t &error) {
		refused_ = true;
		answer = {error.what()};
	}
	screen_.echo(echo);
	if (!ended_)
		screen_.answer(answer);
}

const std::string &session_t::run()
{
	screen_.banner();
	screen_.prompt(prompt_name());
	std::string line;
	while (!ended_ && input_.next_line(line)) {
		// The scripts bring blanks for the pager; those it did not ask for mean nothing.
		if (trimmed(line).empty())
			continue;
		obey(line);
		if (!ended_)
			screen_.prompt(prompt_name());
	}
	if (!ended_)
		screen_.end_line();
	// Refused commands alone never change the file.
	if (opened_ >= 0 && !refused_) {
		let_time_pass(now_);
		save_state(state_path_, now_);
	}
	return screen_.text();
}
