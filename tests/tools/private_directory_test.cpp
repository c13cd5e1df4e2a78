// SPDX-License-Identifier: Apache-2.0
// The directories of our runs, and what is left of those that were killed.
#include "private_directory.h"

#include "processes.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <stdexcept>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

class PrivateDirectory : public ProcessTest
{
protected:
	std::size_t entries() const
	{
		return static_cast<std::size_t>(
			std::distance(fs::directory_iterator(parent.path), fs::directory_iterator()));
	}
	std::string left_behind(const std::string &name) const
	{
		const std::string path = parent.path + "/" + name;
		mkdir(path.c_str(), 0700);
		std::ofstream(path + "/script") << "text";
		return path;
	}

	const scratch_t parent;
	const variable_t tmpdir{"TMPDIR", parent.path};
	const numbers_t told;
};

TEST_F(PrivateDirectory, IsOursAloneAndGoesWithAllThatIsInIt)
{
	{
		const private_directory_t directory;
		EXPECT_EQ(fs::path(directory.path()).parent_path(), parent.path);
		EXPECT_THAT(fs::path(directory.path()).filename(),
		            MatchesRegex("diskscout-run\\.[A-Za-z0-9]{6}"));
		struct stat status;
		ASSERT_EQ(stat(directory.path().c_str(), &status), 0);
		EXPECT_EQ(status.st_mode & 07777, 0700U);
		EXPECT_EQ(status.st_uid, geteuid());
		std::ofstream(directory.path() + "/file") << "text";
		fs::create_directory(directory.path() + "/folder");
		std::ofstream(directory.path() + "/folder/file") << "text";
		fs::create_symlink(parent.path, directory.path() + "/link");
		std::ofstream(parent.path + "/other") << "text";
	}
	// What a link in it names stays.
	EXPECT_EQ(entries(), 1U);
}

TEST_F(PrivateDirectory, EachHasItsOwn)
{
	const private_directory_t one, two;
	EXPECT_NE(one.path(), two.path());
}

TEST_F(PrivateDirectory, NamesOfTheParent)
{
	const std::string link = parent.path + "/link";
	ASSERT_EQ(symlink(parent.path.c_str(), link.c_str()), 0);
	for (const std::string &name : {parent.path + "/", parent.path + "//", link, link + "/./"}) {
		const variable_t here("TMPDIR", name);
		EXPECT_EQ(fs::path(private_directory_t().path()).parent_path(), parent.path) << name;
	}
	for (const char *const name : {"", "relative", "./here"}) {
		const variable_t here("TMPDIR", name);
		EXPECT_EQ(fs::path(private_directory_t().path()).parent_path(), fs::canonical("/tmp"))
			<< name;
	}
}

std::string refusal()
{
	try {
		return "made: " + private_directory_t().path();
	} catch (const std::runtime_error &error) {
		return error.what();
	}
}

TEST_F(PrivateDirectory, CauseIsNamed)
{
	const std::string start = "no directory for the controller tool's files can be made in ";
	{
		const variable_t here("TMPDIR", parent.path + "/none");
		EXPECT_EQ(refusal(), start + parent.path + "/none: No such file or directory");
	}
	std::ofstream(parent.path + "/file");
	const variable_t here("TMPDIR", parent.path + "/file");
	EXPECT_EQ(refusal(), start + parent.path + "/file: Not a directory");
}

TEST_F(PrivateDirectory, WithoutDescriptorsThereIsNoneAndNothingIsLeft)
{
	rlimit before, none;
	getrlimit(RLIMIT_NOFILE, &before);
	none = {0, before.rlim_max};
	setrlimit(RLIMIT_NOFILE, &none);
	const std::string told_us = refusal();
	setrlimit(RLIMIT_NOFILE, &before);
	EXPECT_THAT(told_us, HasSubstr("cannot be locked: Too many open files"));
	EXPECT_EQ(entries(), 0U);
}

TEST_F(PrivateDirectory, CopyOfTheProcessDoesNotRemoveIt)
{
	auto directory = std::make_unique<private_directory_t>();
	wait_for(start([&] { directory.reset(); }));
	EXPECT_TRUE(fs::is_directory(directory->path()));
	directory.reset();
	EXPECT_EQ(entries(), 0U);
}

// ---- the sweep ----

TEST_F(PrivateDirectory, SweepRemovesWhatNobodyHolds)
{
	left_behind("diskscout-run.AAAAAA");
	left_behind("diskscout-run.BBBBBB");
	EXPECT_TRUE(are_private_directories());
	sweep_private_directories();
	EXPECT_EQ(entries(), 0U);
	EXPECT_FALSE(are_private_directories());
}

TEST_F(PrivateDirectory, SweepLeavesWhatSomebodyHolds)
{
	const private_directory_t directory;
	sweep_private_directories();
	EXPECT_TRUE(fs::is_directory(directory.path()));
}

TEST_F(PrivateDirectory, SweepLeavesWhatAWorkerStillHolds)
{
	const pid_t run = start([&] {
		const private_directory_t directory;
		start([&] {
			told.tell(getpid());
			sleep_for_good();
		});
		sleep_for_good();
	});
	const pid_t worker = told.hear();
	kill(run, SIGKILL);
	wait_for(run);
	sweep_private_directories();
	EXPECT_EQ(entries(), 1U);
	kill(worker, SIGKILL);
	EXPECT_TRUE(comes_true([&] {
		sweep_private_directories();
		return entries() == 0;
	}));
	end_descendants();
}

TEST_F(PrivateDirectory, SweepEndsWhoStillWorksThere)
{
	const std::string path = left_behind("diskscout-run.AAAAAA");
	const pid_t child = start([&] {
		ignore_term();
		setsid();
		if (chdir(path.c_str()) != 0)
			leave_copy(1);
		told.tell(0);
		sleep_for_good();
	});
	told.hear();
	// The name of the parent is another one, and the kernel does not know it.
	ASSERT_EQ(symlink(".", (parent.path + "/link").c_str()), 0);
	const variable_t here("TMPDIR", parent.path + "/link/");
	sweep_private_directories();
	EXPECT_TRUE(comes_true([&] {
		waitpid(child, nullptr, WNOHANG);
		return !is_there(child);
	}));
	EXPECT_EQ(entries(), 1U);
}

TEST_F(PrivateDirectory, SweepLeavesWhatOnlyLooksLikeOne)
{
	const std::string elsewhere = left_behind("elsewhere"), start = parent.path + "/diskscout-run.";
	std::ofstream(start + "file__");
	ASSERT_EQ(mkfifo((start + "fifo__").c_str(), 0600), 0);
	ASSERT_EQ(symlink(elsewhere.c_str(), (start + "link__").c_str()), 0);
	left_behind("diskscout-ran.AAAAAA");
	left_behind("x-diskscout-run.AAAAAA");
	sweep_private_directories();
	EXPECT_EQ(entries(), 6U);
	EXPECT_TRUE(fs::exists(elsewhere + "/script"));
}

TEST_F(PrivateDirectory, SweepLeavesThoseOfOthers)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "a directory of another user takes root";
	constexpr uid_t OTHER = 61234;
	const std::string path = left_behind("diskscout-run.AAAAAA");
	ASSERT_EQ(chown(path.c_str(), OTHER, OTHER), 0);
	sweep_private_directories();
	EXPECT_TRUE(fs::exists(path + "/script"));
	// Nor does one who is not root fall over those of others.
	chmod(parent.path.c_str(), 0777);
	left_behind("diskscout-run.BBBBBB");
	EXPECT_EQ(wait_for(start([&] {
			  if (setuid(OTHER) != 0)
				  leave_copy(1);
			  sweep_private_directories();
		  })),
	          0);
	EXPECT_EQ(entries(), 1U);
	EXPECT_FALSE(fs::exists(path));
}

TEST_F(PrivateDirectory, SweepOfADirectoryThatIsNotThere)
{
	const variable_t here("TMPDIR", parent.path + "/none");
	sweep_private_directories();
	EXPECT_FALSE(are_private_directories());
}

// Each makes one, holds it for a moment and sweeps those of the others.
TEST_F(PrivateDirectory, ManyRunsAtOnce)
{
	std::vector<pid_t> runs;
	for (int i = 0; i < 8; i++) {
		runs.push_back(start([] {
			for (int j = 0; j < 25; j++) {
				const private_directory_t directory;
				sweep_private_directories();
				if (!fs::is_directory(directory.path()))
					leave_copy(1);
			}
		}));
	}
	for (const pid_t run : runs)
		EXPECT_EQ(wait_for(run), 0);
	EXPECT_EQ(entries(), 0U);
}

} // namespace
