// SPDX-License-Identifier: Apache-2.0
#include "site.h"

#include "hwraid/aacraid/aac_public.h"

#include <errno.h>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

std::string read_file(const fs::path &path)
{
	std::stringstream text;
	text << std::ifstream(path, std::ios::binary).rdbuf();
	return text.str();
}

void write_file(const fs::path &path, std::string_view text)
{
	std::ofstream(path, std::ios::binary) << text;
}

static int open_descriptors()
{
	int count = 0;
	for ([[maybe_unused]] const auto &entry : fs::directory_iterator("/proc/self/fd"))
		count++;
	return count;
}

static void write_program(const fs::path &path, const std::string &body)
{
	write_file(path, "#!/bin/sh\n" + body);
	fs::permissions(path, fs::perms::owner_all);
}

void SiteTest::SetUp()
{
	before_ = fs::current_path();
	// A name that nobody has left behind, and that another user can go through.
	std::string top_name = fs::temp_directory_path() / "diskscout-site-XXXXXX";
	const fs::path top = mkdtemp(top_name.data());
	fs::permissions(top, fs::perms(0755));
	site_ = top / "site";
	directory_ = top / "work";
	fs::create_directories(site_);
	fs::create_directories(directory_);
	fs::current_path(directory_);

	g_nHaveInit = 0;
	g_szCliPath[0] = g_szCliName[0] = g_szCliFullName[0] = g_szFilterScript[0] = '\0';
	snprintf(g_szConfigFileName, sizeof g_szConfigFileName, "%s", (site_ / "config").c_str());
	configure("Cli Path:" + site_.string() +
	          "\nCli Name:tool\nFilter Script:" + (site_ / "filter").string() + "\n");
	tool("cat >" + (site_ / "script").string() + "\ncat " + (site_ / "answer").string() + "\n");
	filter("cat \"$1\" >\"$2\"\n");
	descriptors_ = open_descriptors();
}

void SiteTest::TearDown()
{
	EXPECT_EQ(left_over(), std::vector<std::string>());
	EXPECT_EQ(open_descriptors(), descriptors_);
	EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD) << "a child is left";
	fs::current_path(before_);
	fs::remove_all(site_.parent_path());
}

void SiteTest::configure(const std::string &text)
{
	write_file(site_ / "config", text);
}

void SiteTest::tool(const std::string &body)
{
	write_program(site_ / "tool", "touch " + (site_ / "ran").string() + "\n" + body);
}

void SiteTest::filter(const std::string &body)
{
	write_program(site_ / "filter", body);
}

void SiteTest::answer(std::string_view text)
{
	write_file(site_ / "answer", text);
}

std::string SiteTest::script() const
{
	return read_file(site_ / "script");
}

bool SiteTest::tool_ran() const
{
	return fs::exists(site_ / "ran");
}

std::vector<std::string> SiteTest::left_over() const
{
	std::vector<std::string> names;
	for (const auto &entry : fs::directory_iterator(directory_))
		names.push_back(entry.path().filename());
	return names;
}
