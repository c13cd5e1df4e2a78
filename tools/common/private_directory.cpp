// SPDX-License-Identifier: Apache-2.0
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
	const std::string parent = named && named[0] == '/' ? named : "/tmp";
	std::error_code error;
	const fs::path resolved = fs::canonical(parent, error);
	return error ? parent : resolved.string();
}

// The lock of a directory of ours that is still the one of this name; else, and when somebody else has it,
// none, and errno.
static int lock_of(const std::string &path)
{
	const int held = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
	if (held < 0)
		return -1;
	struct stat opened, named;
	errno = ENOENT;
	if (fstat(held, &opened) == 0 && opened.st_uid == geteuid() && flock(held, LOCK_EX | LOCK_NB) == 0 &&
	    lstat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
	    opened.st_dev == named.st_dev)
		return held;
	const int cause = errno;
	close(held);
	errno = cause;
	return -1;
}

static void remove(const std::string &path)
{
	std::error_code error;
	fs::remove_all(path, error);
}

private_directory_t::private_directory_t() : owner_(getpid())
{
	// Whoever sweeps may have taken it for left behind before it was locked: once more, then.
	constexpr int ATTEMPTS = 8;
	const std::string parent = parent_of_private_directories();
	for (int i = 0; i < ATTEMPTS && lock_ < 0; i++) {
		path_ = (fs::path(parent) / PREFIX).string() + "XXXXXX";
		if (!mkdtemp(path_.data()))
			throw std::runtime_error(fmt::format(
				"no directory for the controller tool's files can be made in {}: {}", parent,
				strerror(errno)));
		lock_ = lock_of(path_);
		if (lock_ < 0) {
			const int cause = errno;
			rmdir(path_.c_str());
			errno = cause;
		}
	}
	if (lock_ < 0)
		throw std::runtime_error(fmt::format("{} cannot be locked: {}", path_, strerror(errno)));
}

private_directory_t::~private_directory_t()
{
	// A worker that leaves by exit() is not who made it.
	if (getpid() == owner_)
		remove(path_);
	close(lock_);
}

static std::vector<std::string> all_of_them()
{
	std::vector<std::string> found;
	std::error_code error;
	fs::directory_iterator at(parent_of_private_directories(), error);
	for (; !error && at != fs::directory_iterator(); at.increment(error)) {
		if (at->path().filename().string().rfind(PREFIX, 0) == 0)
			found.push_back(at->path().string());
	}
	return found;
}

bool are_private_directories()
{
	return !all_of_them().empty();
}

void sweep_private_directories()
{
	for (const std::string &path : all_of_them()) {
		const int lock = lock_of(path);
		if (lock < 0)
			continue;
		end_processes_in(path);
		remove(path);
		close(lock);
	}
}
