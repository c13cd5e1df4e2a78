// SPDX-License-Identifier: Apache-2.0
// The controller tool, simulated: a script on standard input, the answers on standard output.
//
//   RAIDSIM_STATE=state.txt raidsim <script
//
// The controllers live in the file RAIDSIM_STATE; RAIDSIM_FAULT says what goes wrong.
#include "session.h"
#include "state_text.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <thread>

static std::string variable(const char *name)
{
	const char *const value = getenv(name);
	return value ? value : "";
}

static bool write_out(const std::string &text)
{
	return fwrite(text.data(), 1, text.size(), stdout) == text.size() && fflush(stdout) == 0;
}

static int answer(const faults_t &wanted, std::string text)
{
	std::this_thread::sleep_for(std::chrono::milliseconds(wanted.slow));
	if (wanted.kill)
		text.resize(text.size() / 2);
	if (wanted.cut && static_cast<std::size_t>(*wanted.cut) < text.size())
		text.resize(static_cast<std::size_t>(*wanted.cut));
	if (!write_out(text)) {
		perror("raidsim: standard output");
		return 1;
	}
	if (wanted.kill)
		(void)raise(SIGKILL);
	return static_cast<int>(wanted.exit);
}

static int run()
{
	const faults_t wanted = faults_of(variable("RAIDSIM_FAULT"));
	const std::string path = variable("RAIDSIM_STATE");
	if (path.empty())
		throw state_error_t("RAIDSIM_STATE names no file");
	// It paints a terminal and wants to know which.
	if (variable("TERM").empty())
		throw state_error_t("TERM is not set");
	std::string script{std::istreambuf_iterator<char>(std::cin), {}};
	session_t one(wanted, path, std::move(script));
	return answer(wanted, one.run());
}

int main(int argc, char **)
{
	if (argc > 1) {
		(void)fputs("usage: RAIDSIM_STATE=FILE raidsim <SCRIPT\n", stderr);
		return 2;
	}
	try {
		return run();
	} catch (const std::exception &error) {
		(void)fprintf(stderr, "raidsim: %s\n", error.what());
		return 2;
	}
}
