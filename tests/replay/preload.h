// SPDX-License-Identifier: Apache-2.0
// Programs run with the library before them.

#ifndef DISKSCOUT_TESTS_REPLAY_PRELOAD_H
#define DISKSCOUT_TESTS_REPLAY_PRELOAD_H

#include "host_dir.h"

#include <sys/wait.h>

class PreloadDir : public HostDir
{
protected:
	struct ended {
		int status;
		std::string said; // standard output and error
	};

	// Runs a command with the library before it and these variables set.
	ended run(const std::string &variables, const std::string &command) const
	{
		return run_plain("LD_PRELOAD=" + library() + " " + variables + " " + command);
	}

	static ended run_plain(const std::string &command)
	{
		const std::string line = "exec 2>&1; export LC_ALL=C PATH=$PATH:/usr/sbin:/sbin; " + command;
		FILE *stream = popen(line.c_str(), "r");
		ended result = {-1, ""};
		char block[512];
		for (size_t got = 1; stream != nullptr && got > 0;) {
			got = fread(block, 1, sizeof(block), stream);
			result.said.append(block, got);
		}
		const int status = stream == nullptr ? -1 : pclose(stream);
		result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
		return result;
	}

	// A name that the loader can read, wherever the library was built.
	std::string library() const
	{
		const std::filesystem::path name = root / "replay.so";
		if (!std::filesystem::exists(name))
			std::filesystem::create_symlink(REPLAY_LIBRARY, name);
		return name.string();
	}

	std::string sysroot() const { return "REPLAY_SYSROOT=" + host().string(); }
};

#endif
