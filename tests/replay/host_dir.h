// SPDX-License-Identifier: Apache-2.0
// A captured host made for one test, in a directory of its own.

#ifndef DISKSCOUT_TESTS_REPLAY_HOST_DIR_H
#define DISKSCOUT_TESTS_REPLAY_HOST_DIR_H

#include "replay/replay.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

inline std::string file_text(const std::filesystem::path &path)
{
	std::ifstream in(path, std::ios::binary);
	std::ostringstream text;
	text << in.rdbuf();
	return text.str();
}

// What `work` writes to the standard error descriptor.
inline std::string stderr_of(const std::function<void()> &work)
{
	const int kept = dup(STDERR_FILENO);
	const int into = memfd_create("stderr", MFD_CLOEXEC);
	dup2(into, STDERR_FILENO);
	work();
	dup2(kept, STDERR_FILENO);
	std::string text(65536, '\0');
	const ssize_t got = pread(into, text.data(), text.size(), 0);
	text.resize(got > 0 ? static_cast<size_t>(got) : 0);
	close(into);
	close(kept);
	return text;
}

class HostDir : public ::testing::Test
{
protected:
	HostDir()
	{
		std::string name = ::testing::TempDir() + "replay-XXXXXX";
		root = mkdtemp(name.data());
	}

	~HostDir() override
	{
		replay_use(nullptr);
		replay_log_to(nullptr);
		replay_fail_call(0, 0);
		replay_set_child_library(nullptr);
		std::error_code ignored;
		std::filesystem::remove_all(root, ignored);
	}

	std::filesystem::path host() const { return root / "host"; }
	std::filesystem::path log() const { return root / "log"; }

	void put(const std::string &name, const std::string &text)
	{
		std::filesystem::create_directories((host() / name).parent_path());
		std::ofstream(host() / name, std::ios::binary) << text;
	}

	void link(const std::string &name, const std::string &target)
	{
		std::filesystem::create_directories((host() / name).parent_path());
		std::filesystem::create_symlink(target, host() / name);
	}

	// Shows the host with this table.
	int show(const std::string &table)
	{
		put("host.txt", table);
		return replay_use(host().c_str());
	}

	std::string log_text() const { return file_text(log()); }

	std::filesystem::path root;
};

#endif
