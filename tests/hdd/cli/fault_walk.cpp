// SPDX-License-Identifier: Apache-2.0
// One command on one captured host, once with each of its outside calls failing, and once more with all calls
// failing from there on:
//
//     fault_walk HOST WORD...
//
// Each run is a process of its own: one command ends the process by design, and a crash must not end the
// walk. A run may fail and nothing else. In particular it changes nothing that the run without a failure did
// not change, does not say that it succeeded when it changed less, and leaves no descriptor open. Complaints
// go to standard output, one line each.
#include "replay/replay.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using stcli_type = int(int argc, char **argv, int start);
using lines = std::vector<std::string>;

constexpr unsigned SECONDS_A_RUN_MAY_TAKE = 20;
constexpr int EXIT_OF_INPUT = 255;
constexpr int DESCRIPTORS = 64;

static stcli_type *stcli_function;
static std::vector<char *> words; // with the program's name in front
static std::string log_name;
static int complaints;

// What a run tells the walk, in memory that both see.
struct account {
	long calls;
	int leaked;
	bool returned;
};
static account *shared;

static int open_descriptors()
{
	int open = 0;
	for (int fd = 0; fd < DESCRIPTORS; ++fd)
		open += fcntl(fd, F_GETFD) != -1;
	return open;
}

[[noreturn]] static void run_command(long nth, bool from_there_on)
{
	alarm(SECONDS_A_RUN_MAY_TAKE);
	const int before = open_descriptors();
	if (nth > 0)
		replay_fail_call(nth, from_there_on);
	else
		replay_count_calls();
	const int result = stcli_function(static_cast<int>(words.size()), words.data(), 1);
	shared->calls = replay_calls();
	replay_fail_call(0, 0);
	shared->leaked = open_descriptors() - before;
	shared->returned = true;
	exit(-result);
}

static lines read_log()
{
	lines log;
	std::ifstream stream(log_name);
	for (std::string line; std::getline(stream, line);)
		log.push_back(line);
	std::sort(log.begin(), log.end());
	return log;
}

static int run_apart(long nth, bool from_there_on)
{
	*shared = {};
	unlink(log_name.c_str());
	const pid_t child = fork();
	if (child == 0)
		run_command(nth, from_there_on);
	int status = -1;
	waitpid(child, &status, 0);
	return status;
}

static void complain(long nth, bool from_there_on, const std::string &what)
{
	printf("call %ld%s: %s\n", nth, from_there_on ? " and all later ones" : "", what.c_str());
	++complaints;
}

static bool is_change(const std::string &line)
{
	return line.rfind("write ", 0) == 0 || line.rfind("mknod ", 0) == 0;
}

// One command goes on whatever the table it writes to says.
static bool ignores_failures()
{
	return strcmp(words[1], "scsishuffle") == 0;
}

static void check_changes(long nth, bool from_there_on, bool succeeded, const lines &allowed)
{
	const lines log = read_log();
	if (!std::includes(allowed.begin(), allowed.end(), log.begin(), log.end()))
		complain(nth, from_there_on, "changes something else: " + log.back());
	const auto done = std::count_if(log.begin(), log.end(), is_change);
	if (succeeded && done < std::count_if(allowed.begin(), allowed.end(), is_change) &&
	    !ignores_failures())
		complain(nth, from_there_on, "says that it succeeded, and did not");
}

static void check_run(long nth, bool from_there_on, const lines &allowed)
{
	const int status = run_apart(nth, from_there_on);
	const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
	if (!WIFEXITED(status))
		complain(nth, from_there_on, "signal " + std::to_string(WTERMSIG(status)));
	else if (code != 0 && code != 1 && code != EXIT_OF_INPUT)
		complain(nth, from_there_on, "status " + std::to_string(code));
	if (shared->returned && shared->leaked != 0)
		complain(nth, from_there_on, "descriptors left open: " + std::to_string(shared->leaked));
	check_changes(nth, from_there_on, code == 0, allowed);
}

static long walk()
{
	run_apart(0, false);
	const lines allowed = read_log();
	for (const bool from_there_on : {false, true}) {
		for (long nth = 1;; ++nth) {
			check_run(nth, from_there_on, allowed);
			// A process that ended itself cannot tell how many calls there were: it ended in the
			// first of them.
			if (!shared->returned || shared->calls < nth)
				break;
		}
	}
	return shared->calls;
}

int main(int argc, char **argv)
{
	void *library = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
	void *memory =
		mmap(nullptr, sizeof(account), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
	const char *log = getenv("REPLAY_LOG");
	if (argc < 3 || library == nullptr || memory == MAP_FAILED || log == nullptr)
		return 2;
	stcli_function = reinterpret_cast<stcli_type *>(dlsym(library, "stcli"));
	shared = static_cast<account *>(memory);
	log_name = log;
	words.assign(argv + 1, argv + argc);
	replay_set_child_library(REPLAY_LIBRARY);
	replay_log_to(log);
	if (stcli_function == nullptr || replay_use(argv[1]) != 0)
		return 2;
	const long calls = walk();
	printf("calls %ld\n", calls);
	return complaints == 0 ? 0 : 1;
}
