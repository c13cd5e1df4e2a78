// SPDX-License-Identifier: Apache-2.0
// silent_mount left|taken DIR PROGRAM [WORD...]: runs the program where DIR is a file system that never
// answers. Its status; 77 and why on standard error, when there can be no such file system here.
#include "silent_mount.h"

#include <cstdio>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char **argv)
{
	if (argc < 4)
		return 2;
	const silent_mount_t silent(argv[2],
	                            strcmp(argv[1], "taken") == 0 ? questions_t::TAKEN : questions_t::LEFT);
	if (!silent.lack().empty()) {
		fprintf(stderr, "%s\n", silent.lack().c_str());
		return 77;
	}
	const pid_t program = fork();
	if (program == 0) {
		execvp(argv[3], argv + 3);
		_exit(127);
	}
	int status = 0;
	waitpid(program, &status, 0);
	return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
