// SPDX-License-Identifier: Apache-2.0
// A file system that never answers, as that of a server which is gone.
#ifndef DISKSCOUT_TESTS_TOOLS_SILENT_MOUNT_H
#define DISKSCOUT_TESTS_TOOLS_SILENT_MOUNT_H

#include <string>
#include <sys/types.h>

// Who asks it waits: until he is ended, or, when the questions are taken from the kernel, until the file
// system is gone, whatever is sent to him.
enum class questions_t { LEFT, TAKEN };

class silent_mount_t
{
public:
	// In a room of mounts of this process's own from now on: nobody else sees it.
	silent_mount_t(std::string directory, questions_t questions);
	~silent_mount_t();
	silent_mount_t(const silent_mount_t &) = delete;
	silent_mount_t &operator=(const silent_mount_t &) = delete;

	// Why there is none; empty: there is.
	const std::string &lack() const { return lack_; }

private:
	void open(questions_t questions);
	std::string directory_, lack_;
	pid_t server_ = -1;
};

#endif
