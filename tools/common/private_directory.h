// SPDX-License-Identifier: Apache-2.0
// A directory of our own for the files of one run: who can write where the controller tool's scripts lie
// drives the controller, and what a run leaves must be known from what is somebody else's.
#ifndef DISKSCOUT_TOOLS_COMMON_PRIVATE_DIRECTORY_H
#define DISKSCOUT_TOOLS_COMMON_PRIVATE_DIRECTORY_H

#include <string>
#include <sys/types.h>

// TMPDIR, where that names a place from the root on, or /tmp. Without links: the kernel tells nobody's
// working directory with any. One that is not there stays as it is named.
std::string parent_of_private_directories();

// Below it; locked as long as this lives or one of its workers does.
class private_directory_t
{
public:
	// Throws std::runtime_error, with the cause, when none can be made.
	private_directory_t();
	// Removes it with all that is in it.
	~private_directory_t();
	private_directory_t(const private_directory_t &) = delete;
	private_directory_t &operator=(const private_directory_t &) = delete;

	// Without links.
	const std::string &path() const { return path_; }

private:
	pid_t owner_;
	std::string path_;
	int lock_ = -1;
};

// Removes those of this user that nobody holds any more: all of a run were killed at once. Ends who still
// works in one.
void sweep_private_directories();

// Whether there are any, of whomever: none are no work for sweep_private_directories(), which may take its
// time.
bool are_private_directories();

#endif
