// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/fs.h"

#include "hdd/sal/src/0/str.h"

#include <fcntl.h>
#include <unistd.h>

// compat: part of every line read and of every close, so that what the host has printed so far appears before
// whatever follows from the reading. It waits for the lock of every output stream of the host.
static void flush_all()
{
	fflush(nullptr);
}

FILE *fsopen_ro(const char *path)
{
	// Some paths come from outside: a pipe that nobody writes to must not hold the host. Reading waits:
	// what writes to a pipe may be slow.
	const int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
	if (fd < 0)
		return nullptr;
	fcntl(fd, F_SETFL, 0);
	FILE *fs = fdopen(fd, "r");
	if (!fs)
		close(fd);
	return fs;
}

int fsclose(FILE *fs)
{
	flush_all();
	return fclose(fs);
}

int fsread_line(FILE *fs, char *line)
{
	b0_line(line);
	const bool got = fgets(line, LINE_SIZE, fs) != nullptr;
	flush_all();
	if (!got)
		b0_line(line);
	return got ? 0 : -1;
}

int fsread_line_by_path(const char *path, char *line)
{
	b0_line(line);
	const Stream file(fsopen_ro(path));
	return file ? fsread_line(file.get(), line) : -1;
}

int fswrite_text_by_path(const char *path, const char *text)
{
	FILE *fs = fopen(path, "we");
	if (!fs)
		return -1;
	const bool written = fputs(text, fs) >= 0 && fflush(fs) == 0;
	return fsclose(fs) == 0 && written ? 0 : -1;
}

Stream::~Stream()
{
	if (fs_)
		fsclose(fs_);
}

Pipe::Pipe(const char *command) : fs_(command ? popen(command, "re") : nullptr) {}

bool Pipe::has_failed()
{
	const int status = pclose(fs_);
	fs_ = nullptr;
	return status != 0 && status != -1;
}

Pipe::~Pipe()
{
	if (fs_)
		pclose(fs_);
}
