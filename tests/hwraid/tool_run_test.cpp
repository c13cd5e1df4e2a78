// SPDX-License-Identifier: Apache-2.0
// One run of the controller tool, seen through the smallest operation: what it needs, what it does when
// something is missing, and that it leaves nothing behind.
#include "outside.h"
#include "site.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <gmock/gmock.h>
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

const char *const SCRIPT = "11111111-1111-1111-1111-111111111111";
const char *const RAW = "22222222-2222-2222-2222-222222222222";
const char *const FILTERED = "33333333-3333-3333-3333-333333333333";

std::vector<std::string> with_removals(std::vector<std::string> commands)
{
	for (const char *const name : {SCRIPT, RAW, FILTERED})
		commands.push_back(std::string("rm -rf ") + name);
	return commands;
}

// What is traced, and which commands a shell is given.
class TracedRunTest : public ToolRunTest
{
protected:
	void SetUp() override
	{
		ToolRunTest::SetUp();
		outside.first_name = 1;
		g_nIfNeedDebug = 1;
	}
	void TearDown() override
	{
		g_nIfNeedDebug = 0;
		ToolRunTest::TearDown();
	}
	template <typename Operation> static std::string trace_of(const Operation &operation)
	{
		testing::internal::CaptureStderr();
		EXPECT_EQ(operation(), -1);
		return testing::internal::GetCapturedStderr();
	}
	static std::string trace() { return trace_of(run); }

private:
	own_outside_t own_;
};

using testing::HasSubstr;

TEST_F(TracedRunTest, WithoutAConfigurationTheCommandIsNotRunAndFails)
{
	std::filesystem::remove(site_ / "config");
	const auto delete_one = [] { return Aac_Container_Delete("aac0", 0, 1); };
	EXPECT_THAT(trace_of(delete_one), HasSubstr(std::string("system call return = 32512, szCommandLine= "
	                                                        "(null) <") +
	                                            SCRIPT + " >" + RAW + "\n"));
	EXPECT_EQ(outside.commands, with_removals({}));
}

TEST_F(TracedRunTest, WithoutAToolTheCommandIsNotRunAndFails)
{
	configure("Cli Name:tool\nFilter Script:" + (site_ / "filter").string() + "\n");
	EXPECT_THAT(trace(),
	            HasSubstr(std::string("system call return != 0:  <") + SCRIPT + " >" + RAW + "\n"));
	EXPECT_EQ(outside.commands, with_removals({}));
	EXPECT_STREQ(getenv("TERM"), "linux");
}

TEST_F(TracedRunTest, WithoutAFilterTheToolRunsAndTheLineOfTheFilterFails)
{
	configure("Cli Path:" + site_.string() + "\nCli Name:tool\n");
	const std::string line = std::string(" ") + RAW + " " + FILTERED;
	const auto delete_one = [] { return Aac_Container_Delete("aac0", 0, 1); };
	EXPECT_THAT(trace_of(delete_one),
	            HasSubstr("system call return = 32512, szCommandLine= " + line + "\n"));
	EXPECT_TRUE(tool_ran());
	EXPECT_EQ(outside.commands,
	          with_removals({(site_ / "tool").string() + " <" + SCRIPT + " >" + RAW, line}));
}

TEST_F(TracedRunTest, ARawOutputThatCannotBeMadeFailsLikeAToolThatCannotBeRun)
{
	outside.failing_creation = 2;
	EXPECT_THAT(trace(), HasSubstr("system call return != 0: " + (site_ / "tool").string() + " <" +
	                               SCRIPT + " >" + RAW + "\n"));
	EXPECT_EQ(outside.commands, with_removals({}));
}

TEST_F(TracedRunTest, AScriptThatCannotBeMadeEndsTheRun)
{
	outside.failing_creation = 1;
	EXPECT_THAT(trace(), HasSubstr(" can not create file.\n"));
	EXPECT_EQ(outside.commands, std::vector<std::string>());
}

TEST_F(TracedRunTest, AScriptThatCannotBeWrittenIsRemoved)
{
	outside.fdopen_fails = true;
	EXPECT_THAT(trace(), HasSubstr(" can not create file.\n"));
	EXPECT_EQ(outside.commands, std::vector<std::string>{std::string("rm -rf ") + SCRIPT});
}

TEST_F(TracedRunTest, WithoutATerminalForTheToolOnlyTheScriptIsRemoved)
{
	outside.setenv_fails = true;
	std::filesystem::remove(site_ / "config");
	const std::string said = trace();
	EXPECT_THAT(said, HasSubstr("ERROR! ==> setenv return != 0\n"));
	EXPECT_THAT(said, testing::Not(HasSubstr("can not open the file")));
	EXPECT_EQ(outside.commands, std::vector<std::string>{std::string("rm -rf ") + SCRIPT});
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

TEST_F(ToolRunTest, TheLongestCommandThatFitsIsRun)
{
	// Behind the tool stand two names of 36 characters, two signs and two blanks.
	constexpr int LONGEST = 1023 - 76;
	GetCliConfig();
	const std::string tool_name = g_szCliFullName;
	snprintf(g_szCliFullName, sizeof g_szCliFullName, "%-*s", LONGEST + 1, tool_name.c_str());
	EXPECT_EQ(run(), -1);
	EXPECT_FALSE(tool_ran());
	snprintf(g_szCliFullName, sizeof g_szCliFullName, "%-*s", LONGEST, tool_name.c_str());
	EXPECT_EQ(run(), 1);
}

// Cut to its first 1,023 characters the last command would remove something else.
TEST_F(ToolRunTest, FilesAreRemovedByACommandThatFits)
{
	write_file("kept", "");
	write_file("removed", "");
	EXPECT_EQ(DeleteFileWindowsAndLinux("removed"), 0);
	EXPECT_EQ(DeleteFileWindowsAndLinux("removed"), 0);
	EXPECT_EQ(left_over(), std::vector<std::string>{"kept"});
	EXPECT_EQ(DeleteFileWindowsAndLinux("."), -1);
	EXPECT_EQ(DeleteFileWindowsAndLinux(("kept" + std::string(1100, ' ') + "other").c_str()), -1);
	EXPECT_EQ(left_over(), std::vector<std::string>{"kept"});
	std::filesystem::remove("kept");
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
