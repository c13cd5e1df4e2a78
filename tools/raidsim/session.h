// SPDX-License-Identifier: Apache-2.0
// One run of the tool: a script in, the output out, the changes of accepted commands in the state file.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_SESSION_H
#define DISKSCOUT_TOOLS_RAIDSIM_SESSION_H

#include "commands.h"
#include "screen.h"

class session_t
{
public:
	session_t(const faults_t &wanted, std::string state_path, std::string script);

	// The whole output. May throw a state_error.
	const std::string &run();

private:
	void obey(const std::string &line);
	std::vector<std::string> carry_out(const action_t &row, const command_t &what);
	std::string prompt_name() const;

	const faults_t &wanted_;
	std::string state_path_;
	input_t input_;
	screen_t screen_;
	state_t now_;
	int opened_ = -1; // the open controller's index, -1: none
	bool refused_ = false;
	bool ended_ = false;
};

#endif
