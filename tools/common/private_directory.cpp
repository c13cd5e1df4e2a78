// A directory of our own for the files of one run.
#include "private_directory.h"

#include "process_tree.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

static const char PREFIX[] = "diskscout-run.";

std::string parent_of_private_directories()
{
	const char *const named = getenv("TMPDIR");
	return named && named[0] == '/' ? named : "/tmp";
}

// The lock of a directory that is still the one of this name; else, and when somebody else has it, none.
static int lock_of(const std::string &path)
{
	const int held = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
	if (held < 0)
		return -1;
	struct stat opened, named;
	if (flock(held, LOCK_EX | LOCK_NB) == 0 && fstat(held, &opened) == 0 &&
	    lstat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
	    opened.st_dev == named.st_dev && opened.st_uid == geteuid())
		return held;
	close(held);
	return -1;
}

static void remove(const std::string &path)
{
	std::error_code error;
	fs::remove_all(path, error);
}

private_directory_t::private_directory_t()
{
	// Whoever sweeps may have taken it for left behind before it was locked: once more, then.
	constexpr int ATTEMPTS = 8;
	const std::string parent = parent_of_private_directories();
	for (int i = 0; i < ATTEMPTS && lock_ < 0; i++) {
		path_ = parent + "/" + PREFIX + "XXXXXX";
		if (!mkdtemp(path_.data()))
			throw std::runtime_error(fmt::format(
				"no directory for the controller tool's files can be made in {}: {}", parent,
				strerror(errno)));
		lock_ = lock_of(path_);
	}
	if (lock_ < 0)
		throw std::runtime_error(fmt::format("{} cannot be locked", path_));
}

private_directory_t::~private_directory_t()
{
	remove(path_);
	close(lock_);
}

void sweep_private_directories()
{
	std::error_code error;
	fs::directory_iterator entry(parent_of_private_directories(), error);
	for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
		const std::string path = entry->path().string();
		if (entry->path().filename().string().rfind(PREFIX, 0) != 0)
			continue;
		const int lock = lock_of(path);
		if (lock < 0)
			continue;
		end_processes_in(path);
		remove(path);
		close(lock);
	}
}
