// SPDX-License-Identifier: Apache-2.0
// A site for the hardware side: a working directory with a configuration, a tool that records the script it
// gets and prints a prepared answer, and a filter that copies.
#ifndef DISKSCOUT_TESTS_HWRAID_SITE_H
#define DISKSCOUT_TESTS_HWRAID_SITE_H

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

std::string read_file(const std::filesystem::path &path);
void write_file(const std::filesystem::path &path, std::string_view text);

// Makes the site the process's working directory and forgets every configuration read before. Afterwards no
// file, descriptor or child may be left.
class SiteTest : public testing::Test
{
protected:
	void SetUp() override;
	void TearDown() override;

	void configure(const std::string &text);
	void tool(const std::string &body);
	void filter(const std::string &body);
	void answer(std::string_view text);
	// The script of the last run.
	std::string script() const;
	// The shell has run the tool.
	bool tool_ran() const;
	// What stands in the working directory besides the site's own files.
	std::vector<std::string> left_over() const;

	std::filesystem::path directory_;
	std::filesystem::path site_; // the programs, outside the working directory

private:
	std::filesystem::path before_;
	int descriptors_ = 0;
};

#endif
