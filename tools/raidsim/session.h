// One run of the tool: a script in, the output out, the changes of accepted commands in the state file.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_SESSION_H
#define DISKSCOUT_TOOLS_RAIDSIM_SESSION_H

#include "commands.h"
#include "screen.h"

class session
{
public:
	session(const faults &wanted, std::string state_path, std::string script);

	// The whole output. May throw a state_error.
	const std::string &run();

private:
	void obey(const std::string &line);
	std::vector<std::string> carry_out(const action &row, const command &what);
	std::string prompt_name() const;

	const faults &wanted_;
	std::string state_path_;
	input input_;
	screen screen_;
	state now_;
	int opened_ = -1; // the open controller's index, -1: none
	bool refused_ = false;
	bool ended_ = false;
};

#endif
