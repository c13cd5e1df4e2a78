// SPDX-License-Identifier: Apache-2.0
// The site's configuration file.
#include "site.h"

#include "hwraid/aacraid/aac_public.h"

namespace
{

struct config_row_t {
	const char *text;
	const char *tool;
	const char *filter;
};

class Config : public SiteTest, public testing::WithParamInterface<config_row_t>
{
};

using ConfigFile = SiteTest;

TEST_P(Config, NamesToolAndFilter)
{
	configure(GetParam().text);
	EXPECT_STREQ(GetCliConfig(), GetParam().tool) << GetParam().text;
	EXPECT_STREQ(GetFilterScript(), GetParam().filter) << GetParam().text;
	EXPECT_EQ(g_nHaveInit, 1);
}

INSTANTIATE_TEST_SUITE_P(
	Files, Config,
	testing::Values(config_row_t{"Cli Path:/opt/x\nCli Name:cli\nFilter Script:/opt/f\n", "/opt/x/cli",
                                     "/opt/f"},
                        config_row_t{"Cli Path:/opt/x/\nCli Name:/cli\n", "/opt/x/cli", ""},
                        config_row_t{"Cli Path:/opt/x\nCli Name://cli\n", "/opt/x/cli", ""},
                        config_row_t{"Cli Path: /opt/x\nCli Name:  cli more\n", " /opt/x/cli", ""},
                        config_row_t{"Cli Path:/opt/x \t\r\nCli Name:cli\r\nFilter Script: f g\r\n",
                                     "/opt/x/cli", "f"},
                        config_row_t{"Cli Path:/a\nCli Path:/b\nCli Name:c\nCli Name:d\n", "/b/d", ""},
                        config_row_t{"Cli Path:/a\nCli Name:c\nCli Path:", "/a/c", ""},
                        config_row_t{"Cli Path:/a\nCli Name:c\nCli Name:\n", "/a/c", ""},
                        config_row_t{"Cli Path:/a\nCli Name:c\nCli Path:  \n", "", ""},
                        config_row_t{"cli path:/a\n Cli Path:/a\nCli Name:c\n", "", ""},
                        config_row_t{"Cli Name:c\nFilter Script:f\n", "", "f"},
                        config_row_t{"# nothing\n", "", ""}, config_row_t{"", "", ""}));

TEST_F(ConfigFile, IsReadOnce)
{
	EXPECT_STREQ(GetCliConfig(), (site_ / "tool").c_str());
	configure("Cli Path:/b\nCli Name:d\n");
	EXPECT_STREQ(GetCliConfig(), (site_ / "tool").c_str());
}

TEST_F(ConfigFile, MissingFileIsLookedForAgain)
{
	std::filesystem::remove(site_ / "config");
	EXPECT_EQ(GetCliConfig(), nullptr);
	EXPECT_EQ(g_nHaveInit, 0);
	configure("Cli Path:/b\nCli Name:d\n");
	EXPECT_STREQ(GetCliConfig(), "/b/d");
}

TEST_F(ConfigFile, LongLinesAreReadInPieces)
{
	configure("Cli Path:/" + std::string(300, 'p') + "\nCli Name:c\n");
	EXPECT_EQ(std::string(GetCliConfig()), "/" + std::string(245, 'p') + "/c");
}

TEST_F(ConfigFile, EndsAtALineThatReadsAsNothing)
{
	using namespace std::string_literals;
	configure("Cli Path:/b\nCli Name:d\n\0\nCli Name:e\n"s);
	EXPECT_STREQ(GetCliConfig(), "/b/d");
}

} // namespace
