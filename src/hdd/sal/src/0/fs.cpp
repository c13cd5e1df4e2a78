#include "hdd/sal/src/0/fs.h"

#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/str.h"

#include <unistd.h>

// Part of every line read and of every close: what the host has printed so far appears before whatever
// follows from the reading.
static void flush_all()
{
	fflush(nullptr);
}

FILE *fsopen_ro(const char *path)
{
	// Opened as devices are: some paths come from outside, and a pipe must not hold the host.
	const int fd = fdopen_ro(path);
	FILE *fs = fd >= 0 ? fdopen(fd, "r") : nullptr;
	if (fd >= 0 && !fs)
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

Pipe::Pipe(const char *command) : fs_(popen(command, "re")) {}

Pipe::~Pipe()
{
	if (fs_)
		pclose(fs_);
}
