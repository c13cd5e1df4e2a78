// One run of the controller tool, seen through the smallest operation: what it needs, what it does when
// something is missing, and that it leaves nothing behind.
#include "site.h"

#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_public.h"

#include <signal.h>
#include <sys/resource.h>

namespace
{

const char *const ONE_CONTROLLER = "Executing: controller list\n----\naac0  EXAMPLE  read/write  No\n";

class ToolRunTest : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		answer(ONE_CONTROLLER);
	}

	static int run()
	{
		aac_controller *head = nullptr;
		const int result = Aac_Get_Controller_List(&head);
		EXPECT_EQ(head != nullptr, result > 0);
		Aac_Clear_Controller_List(head);
		return result;
	}
};

TEST_F(ToolRunTest, ScriptGoesToTheToolAndTheAnswerThroughTheFilter)
{
	filter("sed s/aac0/aac7/ \"$1\" >\"$2\"\n");
	aac_controller *head = nullptr;
	ASSERT_EQ(Aac_Get_Controller_List(&head), 1);
	EXPECT_STREQ(head->Adapter_Name, "aac7");
	Aac_Clear_Controller_List(head);
	EXPECT_EQ(script(),
	          "controller list\n" + std::string(42, ' ') + "\n" + std::string(4, ' ') + "\nexit\n");
}

TEST_F(ToolRunTest, TheToolGetsATerminalItKnows)
{
	setenv("TERM", "dumb", 1);
	tool("cat >/dev/null; echo 'Executing: controller list'; echo ----; echo \"$TERM\"\n");
	aac_controller *head = nullptr;
	ASSERT_EQ(Aac_Get_Controller_List(&head), 1);
	EXPECT_STREQ(head->Adapter_Name, "linux\n");
	Aac_Clear_Controller_List(head);
}

TEST_F(ToolRunTest, WithoutAConfigurationItFailsAndLooksAgainLater)
{
	const std::string text = read_file(site_ / "config");
	std::filesystem::remove(site_ / "config");
	EXPECT_EQ(run(), -1);
	EXPECT_EQ(g_nHaveInit, 0);
	EXPECT_FALSE(tool_ran());
	configure(text);
	EXPECT_EQ(run(), 1);
	EXPECT_EQ(g_nHaveInit, 1);
}

TEST_F(ToolRunTest, AConfigurationThatNamesNoToolIsFinal)
{
	const std::string text = read_file(site_ / "config");
	configure("Cli Path:" + site_.string() + "\nFilter Script:" + (site_ / "filter").string() + "\n");
	EXPECT_EQ(run(), -1);
	configure(text);
	EXPECT_EQ(run(), -1);
	EXPECT_FALSE(tool_ran());
}

TEST_F(ToolRunTest, WithoutAFilterTheToolGetsNoCommand)
{
	configure("Cli Path:" + site_.string() + "\nCli Name:tool\n");
	EXPECT_EQ(run(), -1);
	EXPECT_FALSE(tool_ran());
}

struct broken_row_t {
	const char *what;
	const char *tool;
	const char *filter;
};

class Broken : public ToolRunTest, public testing::WithParamInterface<broken_row_t>
{
};

TEST_P(Broken, ProgramFailsTheRun)
{
	if (GetParam().tool)
		tool(GetParam().tool);
	if (GetParam().filter)
		filter(GetParam().filter);
	EXPECT_EQ(run(), -1) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(Programs, Broken,
                         testing::Values(broken_row_t{"tool fails", "exit 3\n", nullptr},
                                         broken_row_t{"tool is killed", "kill -9 $$\n", nullptr},
                                         broken_row_t{"filter fails", nullptr,
                                                      "cat \"$1\" >\"$2\"; exit 1\n"},
                                         broken_row_t{"filter is killed", nullptr, "kill -9 $$\n"},
                                         broken_row_t{"filter makes no file", nullptr, "exit 0\n"}));

TEST_F(ToolRunTest, MissingProgramsFailTheRun)
{
	std::filesystem::remove(site_ / "filter");
	EXPECT_EQ(run(), -1);
	EXPECT_TRUE(tool_ran());
	std::filesystem::remove(site_ / "tool");
	EXPECT_EQ(run(), -1);
}

TEST_F(ToolRunTest, ACommandThatDoesNotFitIsNotRun)
{
	// Cut to 1,023 characters this command would be "touch ran" and blanks.
	configure("Cli Path:/\nCli Name:x\nFilter Script:" + (site_ / "filter").string() + "\n");
	GetCliConfig();
	snprintf(g_szCliFullName, sizeof g_szCliFullName, "touch %s;%1000s", (site_ / "ran").c_str(), "");
	EXPECT_EQ(run(), -1);
	EXPECT_FALSE(tool_ran());
}

TEST_F(ToolRunTest, AWorkingDirectoryThatIsGoneFailsTheRun)
{
	std::filesystem::remove(directory_);
	EXPECT_EQ(run(), -1);
	EXPECT_FALSE(tool_ran());
	std::filesystem::create_directory(directory_);
}

TEST_F(ToolRunTest, WithoutDescriptorsItFails)
{
	GetCliConfig();
	rlimit limit;
	getrlimit(RLIMIT_NOFILE, &limit);
	const rlimit none = {3, limit.rlim_max};
	setrlimit(RLIMIT_NOFILE, &none);
	const int result = run();
	setrlimit(RLIMIT_NOFILE, &limit);
	EXPECT_EQ(result, -1);
	EXPECT_FALSE(tool_ran());
}

// Then no status of a child is ever known; the documents ask for another setting.
TEST_F(ToolRunTest, AHostThatIgnoresItsChildrenSeesFailedRuns)
{
	const auto before = signal(SIGCHLD, SIG_IGN);
	EXPECT_EQ(run(), -1);
	signal(SIGCHLD, before);
}

} // namespace
