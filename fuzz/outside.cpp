// SPDX-License-Identifier: Apache-2.0
#include "outside.h"

#include "replay/replay.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <setjmp.h>
#include <sstream>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

namespace fs = std::filesystem;

// ---- the host ----

Host::Host(const std::string &name, const std::string &table)
    : directory_((fs::temp_directory_path() / ("diskscout-fuzz-" + name + "-XXXXXX")).string())
{
	if (!mkdtemp(directory_.data()))
		abort();
	file("host.txt", table);
}

Host::~Host()
{
	std::error_code ignored;
	fs::remove_all(directory_, ignored);
}

void Host::file(const std::string &path, const std::string &text) const
{
	const fs::path whole = directory_ + "/" + path;
	int fd = open(whole.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
	if (fd < 0) {
		fs::create_directories(whole.parent_path());
		fd = open(whole.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
	}
	if (write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
		abort();
	close(fd);
}

static FILE *nowhere()
{
	static FILE *file = fopen("/dev/null", "we");
	return file;
}

Visit::Visit(const Host &host) : home_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), stderr_(stderr)
{
	if (home_ < 0 || !nowhere() || chdir(host.directory().c_str()) != 0 ||
	    replay_use(host.directory().c_str()) != 0)
		abort();
	stderr = nowhere();
}

Visit::~Visit()
{
	stderr = stderr_;
	if (replay_use(nullptr) != 0 || fchdir(home_) != 0)
		abort();
	close(home_);
}

Typed::Typed(const std::string &text) : stdin_(stdin)
{
	static FILE *typed = tmpfile();
	if (!typed || ftruncate(fileno(typed), 0) != 0)
		abort();
	rewind(typed);
	fwrite(text.data(), 1, text.size(), typed);
	rewind(typed);
	stdin = typed;
}

Typed::~Typed()
{
	stdin = stdin_;
}

std::string content_of(const char *path)
{
	std::ostringstream text;
	text << std::ifstream(path, std::ios::binary).rdbuf();
	return text.str();
}

int free_descriptor()
{
	const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
	close(fd);
	return fd;
}

// ---- the end of the process ----

static struct {
	bool stands;
	jmp_buf here;
	int status;
	FILE *stream; // opened last: whoever ends the process leaves it open
} stop;

bool ends_process(const std::function<void()> &work, int *status)
{
	stop.stream = nullptr;
	if (setjmp(stop.here) == 0) {
		stop.stands = true;
		work();
		stop.stands = false;
		return false;
	}
	stop.stands = false;
	if (stop.stream)
		fclose(stop.stream);
	*status = stop.status;
	return true;
}

extern "C" {

[[noreturn]] void __real_exit(int status);
FILE *__real_fdopen(int fd, const char *mode);
int __real_fclose(FILE *stream);

[[noreturn]] void __wrap_exit(int status)
{
	if (!stop.stands)
		__real_exit(status);
	stop.status = status;
	longjmp(stop.here, 1);
}

FILE *__wrap_fdopen(int fd, const char *mode)
{
	FILE *stream = __real_fdopen(fd, mode);
	stop.stream = stream;
	return stream;
}

int __wrap_fclose(FILE *stream)
{
	if (stop.stream == stream)
		stop.stream = nullptr;
	return __real_fclose(stream);
}

// ---- programs ----

// The only pipe is that of the mount table; a shell for each input would be most of the time.
FILE *__wrap_popen(const char *, const char *)
{
	return fopen("/etc/mtab", "re");
}

int __wrap_pclose(FILE *stream)
{
	fclose(stream);
	return 0;
}

// Files of a run are removed; there is no other program.
int __wrap_system(const char *command)
{
	constexpr char REMOVE[] = "rm -rf ";
	constexpr int NO_SUCH_PROGRAM = 127 << 8;
	if (!command || strncmp(command, REMOVE, strlen(REMOVE)) != 0)
		return NO_SUCH_PROGRAM;
	remove(command + strlen(REMOVE));
	return 0;
}

int __wrap_nanosleep(const timespec *, timespec *)
{
	return 0;
}

// ---- changes ----

int __wrap_mkdir(const char *, mode_t)
{
	return 0;
}

int __wrap_mknod(const char *, mode_t, dev_t)
{
	return 0;
}

int __wrap_unlink(const char *)
{
	return 0;
}
}
