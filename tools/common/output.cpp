// SPDX-License-Identifier: Apache-2.0
// The two streams of a program.
#include "output.h"

#include "program.h"
#include "text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>

void occupy_standard_descriptors()
{
	for (int descriptor = 0; descriptor <= 2; descriptor++) {
		if (fcntl(descriptor, F_GETFD) != -1)
			continue;
		// Takes the lowest free number, which is this one. For reading: a write shall still fail. It
		// stays open over a restart, too.
		if (open("/dev/null", O_RDONLY) == -1)
			return;
	}
}

bool write_output(std::string_view text)
{
	// The last of it leaves at the close, and some file systems tell only then that there was no room.
	if (fwrite(text.data(), 1, text.size(), stdout) == text.size() && fclose(stdout) == 0)
		return true;
	complain(fmt::format("the output cannot be written: {}", strerror(errno)));
	return false;
}

void complain(std::string_view what)
{
	const std::string line = fmt::format("{}: {}\n", PROGRAM_NAME, printable(what));
	fputs(line.c_str(), stderr);
}
