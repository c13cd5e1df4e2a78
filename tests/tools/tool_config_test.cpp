// SPDX-License-Identifier: Apache-2.0
// The controller tool's configuration, as the plug-in reads it.
#include "tool_config.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace
{

class ToolConfig : public testing::Test
{
protected:
	~ToolConfig() override { std::filesystem::remove_all(file_); }

	tool_config_t read(const std::string &text)
	{
		std::ofstream(file_, std::ios::binary) << text;
		return read_tool_config(file_).value();
	}

	std::string file_ = testing::TempDir() + "tool-config." + std::to_string(getpid());
};

TEST_F(ToolConfig, names_tool_and_filter)
{
	const auto config = read("Cli Path:/opt/raid\nCli Name:toolcli\nFilter Script:/opt/raid/filter\n");
	EXPECT_EQ(config.tool(), "/opt/raid/toolcli");
	EXPECT_EQ(config.filter, "/opt/raid/filter");
}

TEST_F(ToolConfig, path_is_taken_with_the_blank_in_front_and_without_those_behind)
{
	EXPECT_EQ(read("Cli Path: /opt/my raid \t\r\nCli Name:toolcli\n").tool(), " /opt/my raid/toolcli");
}

TEST_F(ToolConfig, of_name_and_filter_the_first_word_counts)
{
	const auto config = read("Cli Path:/opt\nCli Name: \ttoolcli really\nFilter Script: /a b\r\n");
	EXPECT_EQ(config.tool(), "/opt/toolcli");
	EXPECT_EQ(config.filter, "/a");
}

TEST_F(ToolConfig, between_path_and_name_stands_one_slash)
{
	EXPECT_EQ(read("Cli Path:/opt/\nCli Name:toolcli\n").tool(), "/opt/toolcli");
	EXPECT_EQ(read("Cli Path:/opt\nCli Name://toolcli\n").tool(), "/opt/toolcli");
}

TEST_F(ToolConfig, without_path_or_name_there_is_no_tool)
{
	EXPECT_EQ(read("Cli Name:toolcli\n").tool(), "");
	EXPECT_EQ(read("Cli Path:/opt\n").tool(), "");
	EXPECT_EQ(read("cli path:/opt\nCli Name:toolcli\n").tool(), "");
	EXPECT_EQ(read(" Cli Path:/opt\nCli Name:toolcli\n").tool(), "");
}

TEST_F(ToolConfig, later_line_counts_and_empty_word_changes_nothing)
{
	const auto config = read("Cli Path:/a\nCli Path:/b\nCli Name:one\nCli Name:two\nCli Name:\n");
	EXPECT_EQ(config.tool(), "/b/two");
	EXPECT_EQ(read("Cli Path:/a\nCli Path:\nCli Name:one\n").tool(), "");
}

TEST_F(ToolConfig, what_does_not_fit_a_line_is_a_line_of_its_own)
{
	const std::string text = "Cli Path:/" + std::string(245, 'a');
	const auto config = read(text + "Cli Name:toolcli\n");
	EXPECT_EQ(config.directory, text.substr(9));
	EXPECT_EQ(config.name, "toolcli");
	ASSERT_EQ(config.lines.size(), 2U);
	EXPECT_EQ(config.lines[1], "Cli Name:toolcli");
}

TEST_F(ToolConfig, ends_at_a_line_that_begins_with_nul)
{
	const std::string text("Cli Path:/a\n\0\nCli Name:one\n", 27);
	EXPECT_EQ(read(text).name, "");
}

TEST_F(ToolConfig, what_cannot_be_read_is_told)
{
	EXPECT_FALSE(read_tool_config(file_ + ".missing"));
	EXPECT_EQ(errno, ENOENT);
	EXPECT_FALSE(read_tool_config(testing::TempDir()));
	EXPECT_EQ(errno, EISDIR);
}

} // namespace
