// SPDX-License-Identifier: Apache-2.0
// Every trace, from one table each of what a run, an answer or a configuration can be: the whole text that an
// operation says, in order. The lines that only tell a position are left out: where they stand is nobody's
// business. The files of a run are called script1, raw1 and filtered1; those of the next run bear the next
// number.
#include "outside.h"
#include "site.h"
#include "spoken_names.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_raid.h"
#include "hwraid/aacraid/aac_task.h"
#include "hwraid/aacraid/create_a_uuid.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <algorithm>
#include <functional>
#include <regex>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

namespace
{

// All that the traces say. The shell's own words on the same descriptor are kept apart and dropped.
std::string whole_trace(const std::function<void()> &work)
{
	char *text = nullptr;
	size_t size = 0;
	testing::internal::CaptureStderr();
	FILE *const before = stderr;
	stderr = open_memstream(&text, &size);
	work();
	fclose(stderr);
	stderr = before;
	testing::internal::GetCapturedStderr();
	const std::string whole(text, size);
	free(text);
	return whole;
}

// A line's number takes four places at least.
const std::regex
	POSITION("File:hwraid/aacraid/[a-z0-9_]+, Line:(   [0-9]|  [0-9]{2}| [0-9]{3}|[0-9]{4,})(\n?)");

std::string without_positions(const std::string &whole)
{
	std::string text;
	auto from = whole.cbegin();
	for (std::sregex_iterator at(from, whole.cend(), POSITION), none; at != none; ++at) {
		text.append(from, (*at)[0].first);
		if ((*at)[2].length() == 0)
			text += "[position]";
		from = (*at)[0].second;
	}
	return text.append(from, whole.cend());
}

std::string traced(const std::function<void()> &work)
{
	return without_positions(whole_trace(work));
}

class TraceTable : public SiteTest
{
public:
	using SiteTest::answer;
	using SiteTest::configure;
	using SiteTest::directory_;
	using SiteTest::filter;
	using SiteTest::site_;
	using SiteTest::tool;

	std::string tool_name() const { return (site_ / "tool").string(); }
	std::string filter_name() const { return (site_ / "filter").string(); }
	std::string path_line() const { return "______________path = " + site_.string() + "_________\n"; }
	std::string filter_line() const { return "______________filter = " + filter_name() + "_________\n"; }
	// What the first run says of the site's configuration.
	std::string configuration() const
	{
		return path_line() + "______________name = tool_________\n" + filter_line() +
		       "--oh, Got string:" + tool_name() + "\n";
	}

protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		g_nIfNeedDebug = 1;
		use_names(names_t::SPOKEN);
	}
	void TearDown() override
	{
		signal(SIGCHLD, SIG_DFL);
		g_nIfNeedDebug = -1;
		use_names(names_t::FRESH);
		std::filesystem::create_directories(directory_);
		SiteTest::TearDown();
	}

private:
	own_outside_t own_;
};

// ---- the operations, and the words that they have of their own ----

struct words_t {
	std::string (*failed)(int status, const std::string &command);
	const char *missing; // before the name of the answer's file
};

const words_t OF_CONTAINERS = {[](int status, const std::string &command) {
				       return "system call return = " + std::to_string(status) +
	                                      ", szCommandLine= " + command + "\n";
			       },
                               "stat file < 0:"};
const words_t OF_CONTROLLERS = {
	[](int, const std::string &command) { return "system call return != 0: " + command + "\n"; },
	"stat file return < 0: "};
const words_t OF_DISKS = {[](int status, const std::string &command) {
				  return "system call return :" + std::to_string(status) + " " + command +
	                                 ".\n";
			  },
                          "stat file error:"};
const words_t OF_TASKS = {[](int status, const std::string &command) {
				  return "system call return :" + std::to_string(status) + ", " + command +
	                                 "\n";
			  },
                          "state the file return < 0. "};

struct operation_t {
	const char *name;
	int (*run)();
	const words_t *words;
	const char *end; // what it says of a failed run at last
};

template <typename Record> int run_list(int (*get)(const char *, Record **), int (*clear)(Record *))
{
	Record *head = nullptr;
	const int result = get("aac0", &head);
	clear(head);
	return result;
}

int list_containers()
{
	return run_list(Aac_Get_Container_List, Aac_Clear_Container_List);
}

int disk_name()
{
	char name[256];
	return Aac_Get_Container_Corresponding_Disk_Name("aac0", 5, name);
}

int create_raid0()
{
	return Aac_Create_Raid0("aac0", "data", 64, 0, 1024, 256, -1);
}

int list_controllers()
{
	aac_controller *head = nullptr;
	const int result = Aac_Get_Controller_List(&head);
	Aac_Clear_Controller_List(head);
	return result;
}

template <int position> int controller_name()
{
	char name[32];
	return Aac_Get_Controller_Name(name, position);
}

int list_disks()
{
	return run_list(Aac_Get_Disk_List, Aac_Clear_Disk_List);
}

int initialize()
{
	return Aac_Disk_Initialize("aac0", 1, 0, 256);
}

int show_defect()
{
	int primary;
	int grown;
	return Aac_Disk_Show_Defect("aac0", 256, &primary, &grown);
}

int show_space()
{
	aac_space *head = nullptr;
	const int result = Aac_Disk_Show_Space("aac0", 256, &head);
	Aac_Clear_Disk_Space_List(head);
	return result;
}

int show_partition()
{
	return run_list(Aac_Disk_Show_Partition, Aac_Clear_Disk_Partition_List);
}

int list_tasks()
{
	return run_list(Aac_Get_Task_List, Aac_Clear_Task_List);
}

// -1: there is none.
int container_task()
{
	aac_task *head = Aac_Get_Container_Task("aac0", 5);
	const int result = head ? head->TaskId : -1;
	Aac_Clear_Task_List(head);
	return result;
}

// For a test's name in a report; of a row's bytes some are not set.
void PrintTo(const operation_t &row, std::ostream *stream)
{
	*stream << row.name;
}

const operation_t OPERATIONS[] = {
	{"list_containers", list_containers, &OF_CONTAINERS, ""},
	{"delete", [] { return Aac_Container_Delete("aac0", 0, 5); }, &OF_CONTAINERS, ""},
	{"set_failover", [] { return Aac_Container_Set_Failover("aac0", 5, 256); }, &OF_CONTAINERS, ""},
	{"show_failover", [] { return Aac_Container_Show_Failover("aac0", 5); }, &OF_CONTAINERS, ""},
	{"remove_failover", [] { return Aac_Container_Remove_Failover("aac0", 5, 256); }, &OF_CONTAINERS, ""},
	{"disk_name", disk_name, &OF_CONTAINERS, ""},
	{"create_raid0", create_raid0, &OF_CONTAINERS, ""},
	{"create_raid1", [] { return Aac_Create_Raid1("aac0", "data", 1, 0, 1024, 256); }, &OF_CONTAINERS,
         ""},
	{"create_raid5", [] { return Aac_Create_Raid5("aac0", "data", 1, 64, 0, 1024, 256, 512, -1); },
         &OF_CONTAINERS, ""},
	{"create_raid10", [] { return Aac_Create_Raid10("aac0", "data", 64, 1, 2, -1); }, &OF_CONTAINERS, ""},
	{"list_controllers", list_controllers, &OF_CONTROLLERS, ""},
	{"controller_name", controller_name<0>, &OF_CONTROLLERS, "Aac_Get_Controller_Name reutrn -1\n"},
	{"list_disks", list_disks, &OF_DISKS, ""},
	{"initialize", initialize, &OF_DISKS, ""},
	{"show_defect", show_defect, &OF_DISKS, ""},
	{"show_space", show_space, &OF_DISKS, ""},
	{"show_partition", show_partition, &OF_DISKS, ""},
	{"list_tasks", list_tasks, &OF_TASKS, "return :-1.\n"},
	{"container_task", container_task, &OF_TASKS, "return :-1.\n"},
};

// ---- runs that fail, the same for all operations ----

struct failure_t {
	const char *name;
	void (*make)(TraceTable &site);
	std::string (*expected)(const TraceTable &site, const words_t &words);
};

void PrintTo(const failure_t &row, std::ostream *stream)
{
	*stream << row.name;
}

const char *const NO_SCRIPT = "[position] can not create file.\n";
const char *const NO_TERMINAL = "ERROR! ==> setenv return != 0\n";
const char *const NO_NAME = "[position], uuid create error.\n";

const failure_t FAILURES[] = {
	{"no_script_can_be_made", [](TraceTable &site) { std::filesystem::remove(site.directory_); },
         [](const TraceTable &, const words_t &) { return std::string(NO_SCRIPT); }},
	{"no_name_can_be_made", [](TraceTable &) { use_names(names_t::EMPTY); },
         [](const TraceTable &, const words_t &) {
		 return std::string(NO_NAME) + NO_NAME + NO_NAME + NO_SCRIPT;
	 }},
	// The tool is not asked for before it is needed.
	{"no_terminal_can_be_set", [](TraceTable &) { outside.setenv_fails = true; },
         [](const TraceTable &, const words_t &) { return std::string(NO_TERMINAL); }},
	{"no_configuration", [](TraceTable &site) { std::filesystem::remove(site.site_ / "config"); },
         [](const TraceTable &, const words_t &words) {
		 return "can not open the file:\n" + words.failed(32512, "(null) <script1 >raw1");
	 }},
	{"no_tool_configured",
         [](TraceTable &site) {
		 site.configure("Cli Path:" + site.site_.string() + "\nFilter Script:" + site.filter_name() +
	                        "\n");
	 },
         [](const TraceTable &site, const words_t &words) {
		 return site.path_line() + site.filter_line() +
	                "---oh, there is a equal zero.------------------\n" +
	                words.failed(32512, " <script1 >raw1");
	 }},
	{"no_filter_configured",
         [](TraceTable &site) { site.configure("Cli Path:" + site.site_.string() + "\nCli Name:tool\n"); },
         [](const TraceTable &site, const words_t &words) {
		 return site.path_line() + "______________name = tool_________\n" +
	                "--oh, Got string:" + site.tool_name() + "\n" +
	                words.failed(32512, " raw1 filtered1");
	 }},
	{"no_output_can_be_made", [](TraceTable &) { outside.failing_creation = 2; },
         [](const TraceTable &site, const words_t &words) {
		 return site.configuration() + words.failed(32512, site.tool_name() + " <script1 >raw1");
	 }},
	{"no_tool_installed", [](TraceTable &site) { std::filesystem::remove(site.tool_name()); },
         [](const TraceTable &site, const words_t &words) {
		 return site.configuration() + words.failed(32512, site.tool_name() + " <script1 >raw1");
	 }},
	{"no_status_is_told", [](TraceTable &) { signal(SIGCHLD, SIG_IGN); },
         [](const TraceTable &site, const words_t &words) {
		 return site.configuration() + words.failed(-1, site.tool_name() + " <script1 >raw1");
	 }},
	// A status as wait tells it: 3 in the second byte.
	{"tool_fails", [](TraceTable &site) { site.tool("exit 3\n"); },
         [](const TraceTable &site, const words_t &words) {
		 return site.configuration() + words.failed(768, site.tool_name() + " <script1 >raw1");
	 }},
	{"no_filter_installed", [](TraceTable &site) { std::filesystem::remove(site.filter_name()); },
         [](const TraceTable &site, const words_t &words) {
		 return site.configuration() + words.failed(32512, site.filter_name() + " raw1 filtered1");
	 }},
	{"filter_fails", [](TraceTable &site) { site.filter("cat \"$1\" >\"$2\"; exit 1\n"); },
         [](const TraceTable &site, const words_t &words) {
		 return site.configuration() + words.failed(256, site.filter_name() + " raw1 filtered1");
	 }},
	{"filter_makes_no_file", [](TraceTable &site) { site.filter("exit 0\n"); },
         [](const TraceTable &site, const words_t &words) {
		 return site.configuration() + words.missing + "filtered1\n";
	 }},
};

class FailedRun : public TraceTable, public testing::WithParamInterface<std::tuple<operation_t, failure_t>>
{
};

TEST_P(FailedRun, SaysWhy)
{
	const auto &[operation, failure] = GetParam();
	answer("");
	failure.make(*this);
	int result = 0;
	const std::string said = traced([&, run = operation.run] { result = run(); });
	EXPECT_EQ(result, -1);
	EXPECT_EQ(said, failure.expected(*this, *operation.words) + operation.end);
}

INSTANTIATE_TEST_SUITE_P(All, FailedRun,
                         testing::Combine(testing::ValuesIn(OPERATIONS), testing::ValuesIn(FAILURES)),
                         [](const auto &row) {
				 return std::string(std::get<0>(row.param).name) + "__" +
	                                std::get<1>(row.param).name;
			 });

// ---- answers ----

struct answer_t {
	const char *name;
	int (*run)();
	std::string answer;
	int result;
	std::string expected; // behind the configuration
};

void PrintTo(const answer_t &row, std::ostream *stream)
{
	*stream << row.name;
}

const std::string WRONG_TYPE = "Command Error: <The requested controller is of the wrong type.>\n";
const std::string BUSY = "Command Error: <Another application has opened the controller.>\n";
const std::string NO_CONTAINER = "Command Error: <The specified container was not found.>\n";
const std::string OTHER = "Command Error: <Else.>\n";

const std::string CONTAINERS = "Executing: open \"aac0\"\nExecuting: container list\n"
			       "Num          Total  Oth Stripe          Scsi   Partition\n"
			       "Label Type   Size   Ctr Size   Usage   C:ID:L Offset:Size\n"
			       "----- ------ ------ --- ------ ------- ------ -------------\n";
const std::string VOLUME_0 = "0    Volume 10.0GB            Valid   1:01:0 64.0KB:10.0GB\n";
const std::string VOLUME_1 = "1    Volume 10.0GB            Valid   1:02:0 64.0KB:10.0GB\n";
const std::string CONTROLLERS = "Executing: controller list\n----\naac0  EXAMPLE  read/write  No\n";
const std::string ROW_OF_A_DISK =
	"Executing: disk list\n----\n0:01:0 Disk No ACME EX 1 100 512 Initialized No 320\n";
const std::string ROW_OF_A_TASK = "Executing: task list\n----\n  106   Rebuild 45.0%      5      RUN\n";
const std::string MISTYPED = "Parsing Error: Line 1, Character 10: \"x\"\n";

const answer_t ANSWERS[] = {
	// Each container is traced once its hot spare has been asked for; here the tool answers that with the
	// same listing, which reads as a table without its rule.
	{"containers", list_containers, CONTAINERS + VOLUME_0 + "\n" + VOLUME_1 + "\nAAC0>\n", 2,
         "Deal with a larger node return 0\nDeal with a larger node return 0\n"},
	{"containers_and_noise", list_containers,
         CONTAINERS + "Noise and nothing else\n\n" + VOLUME_1 + "\nAAC0>\n", 1,
         "Deal with a larger node return -1\nDeal with a larger node return 0\n"},
	{"no_containers", list_containers, CONTAINERS + "\n\nAAC0>\n", 0, ""},
	{"containers_busy", list_containers, BUSY, -200, ""},

	{"deleted", [] { return Aac_Container_Delete("aac0", 0, 5); }, "", 0, ""},
	{"not_deleted", [] { return Aac_Container_Delete("aac0", 0, 5); }, NO_CONTAINER, -5, ""},
	{"not_set", [] { return Aac_Container_Set_Failover("aac0", 5, 256); }, NO_CONTAINER, -5, ""},
	{"not_removed", [] { return Aac_Container_Remove_Failover("aac0", 5, 256); }, NO_CONTAINER, -5, ""},
	{"not_shown", [] { return Aac_Container_Show_Failover("aac0", 5); }, NO_CONTAINER, -5, ""},

	// The line with its own end.
	{"disk_name", disk_name, "Label Type\n/dev/sda  data\n", 0, ""},
	{"disk_name_wrong_controller", disk_name, "Executing: open\n" + WRONG_TYPE, -100,
         "return -100, REASON:" + WRONG_TYPE + "\n"},
	{"disk_name_closed_controller", disk_name,
         "Command Error: <Adapter must be opened before this command is used.>\n", -100,
         "return -100, REASON:Command Error: <Adapter must be opened before this command is used.>\n\n"},
	{"disk_name_no_controller", disk_name, "Command Error: <The requested controller does not exist.>\n",
         -100, "return -100, REASON:Command Error: <The requested controller does not exist.>\n\n"},
	{"disk_name_busy", disk_name, BUSY, -200, "return -200, REASON:" + BUSY + "\n"},
	{"disk_name_no_container", disk_name, "  Container not found", -5,
         "return -5, REASON:Container not found\n"},
	{"disk_name_other_error", disk_name, "It says Command Error\n", -300,
         "return -300, REASON:It says Command Error\n\n"},
	{"disk_name_no_heading", disk_name, "nothing\n", -300, ""},
	{"disk_name_no_line", disk_name, "Label Type\n" + OTHER, -300, ""},

	{"created", create_raid0, "", 0, ""},
	{"not_created", create_raid0, NO_CONTAINER, -5, ""},
	{"not_understood", create_raid0, "Executing: open\n" + MISTYPED + NO_CONTAINER, -300,
         "finding parsing error in line:" + MISTYPED + "\n"},
	{"not_understood_at_all", create_raid0, " Parsing Error:", -300,
         "finding parsing error in line:Parsing Error:\n"},

	{"controllers", list_controllers, CONTROLLERS, 1, ""},
	{"controllers_wrong_type", list_controllers, WRONG_TYPE, -100,
         "AnalyzeControllerFile return != 0 == -100.\n"},
	{"controllers_busy", list_controllers, BUSY, -200, "AnalyzeControllerFile return != 0 == -200.\n"},
	{"controllers_other_error", list_controllers, OTHER, -300,
         "AnalyzeControllerFile return != 0 == -300.\n"},
	{"first_controller", controller_name<0>, CONTROLLERS, 0, "Aac_Get_Controller_Name reutrn 0\n"},
	{"controller_behind_the_last", controller_name<1>, CONTROLLERS, -1,
         "After while loop, find pointer is NULL\nAac_Get_Controller_Name reutrn -1\n"},
	{"controller_further_behind", controller_name<2>, CONTROLLERS, -1,
         "find pointer is NULL, so return -1...\nAac_Get_Controller_Name reutrn -1\n"},
	{"controller_of_none", controller_name<0>, "", -1, "Aac_Get_Controller_Name reutrn -1\n"},
	{"controller_name_busy", controller_name<0>, BUSY, -1,
         "AnalyzeControllerFile return != 0 == -200.\nAac_Get_Controller_Name reutrn -1\n"},

	{"disks", list_disks, ROW_OF_A_DISK, 1, "AnalyzeDiskFile Return value is 0\n"},
	{"disks_busy", list_disks, BUSY, -200, "AnalyzeDiskFile Return value is -200\n"},
	{"initialized", initialize, "", 0, "AnalyzeDiskInitializeFile Return value is 0\n"},
	{"not_initialized", initialize, "Executing: open\n\nExecuting: disk init\n" + OTHER, -300,
         "AnalyzeDiskInitializeFile Return value is -300\n"},
	{"defects", show_defect, "Number of PRIMARY defects: 3\nNumber of GROWN defects: 1\n", 0,
         "AnalyzeDiskShowDefectFile Return value is 0\n"},
	{"defects_of_a_bad_disk", show_defect, "Error: detected a bad status\n", -50,
         "AnalyzeDiskShowDefectFile Return value is -50\n"},
	// Space, too, speaks of defects.
	{"space", show_space, "0:01:0 Free 1.5GB:2.0GB\n", 1,
         "AnalyzeDiskShowDefectFile Return value is 0\n"},
	{"space_busy", show_space, BUSY, -200, "AnalyzeDiskShowDefectFile Return value is -200\n"},
	{"partitions", show_partition,
         "Executing: disk show partition\n------\n0:00:0 64.0KB:1.0GB 7 Mirror 0 None RW\n", 1,
         "AnalyzePartitionFile Return value is 0\n"},
	{"partitions_busy", show_partition, BUSY, -200, "AnalyzePartitionFile Return value is -200\n"},

	{"tasks", list_tasks, ROW_OF_A_TASK, 1, "AnalyzeTaskFile return 0.\nreturn :1.\n"},
	{"tasks_busy", list_tasks, BUSY, -200, "AnalyzeTaskFile return -200.\nreturn :-200.\n"},
	{"task_of_a_container", container_task, ROW_OF_A_TASK, 106,
         "AnalyzeTaskFile return 0.\nreturn :1.\n"},
	{"no_task_of_a_container", container_task, "", -1, "AnalyzeTaskFile return 0.\nreturn :0.\n"},
};

class Answered : public TraceTable, public testing::WithParamInterface<answer_t>
{
};

TEST_P(Answered, IsTraced)
{
	const answer_t &row = GetParam();
	answer(row.answer);
	int result = 0;
	EXPECT_EQ(traced([&] { result = row.run(); }), configuration() + row.expected);
	EXPECT_EQ(result, row.result);
	EXPECT_EQ(traced([&] { row.run(); }), row.expected) << "the configuration is read once";
}

INSTANTIATE_TEST_SUITE_P(All, Answered, testing::ValuesIn(ANSWERS),
                         [](const auto &row) { return std::string(row.param.name); });

// The query for a container's hot spare is a run of its own.
TEST_F(TraceTable, HotSpareThatCannotBeAskedFor)
{
	answer(CONTAINERS + VOLUME_1 + "\nAAC0>\n");
	tool("cat >script; if grep -q failover script; then rm script; exit 2; fi; rm script; cat " +
	     (site_ / "answer").string() + "\n");
	int result = 0;
	const std::string said = traced([&] { result = list_containers(); });
	EXPECT_EQ(result, 1);
	EXPECT_EQ(said, configuration() + OF_CONTAINERS.failed(512, tool_name() + " <script2 >raw2") +
	                        "Deal with a larger node return 0\n");
}

TEST_F(TraceTable, AnswerToACreationThatIsGone)
{
	int result = 0;
	EXPECT_EQ(traced([&] { result = Analyze_Create_Raid_Created_File("nowhere", 0); }),
	          "can not open the file nowhere\n");
	EXPECT_EQ(result, -1);
}

// ---- the configuration ----

struct configuration_t {
	const char *name;
	const char *text;
	const char *expected;
};

void PrintTo(const configuration_t &row, std::ostream *stream)
{
	*stream << row.name;
}

const configuration_t CONFIGURATIONS[] = {
	{"in_order", "Cli Path:/usr/local/tool\nCli Name:toolcli\nFilter Script:/usr/local/tool/filter.sh\n",
         "______________path = /usr/local/tool_________\n"
         "______________name = toolcli_________\n"
         "______________filter = /usr/local/tool/filter.sh_________\n"
         "--oh, Got string:/usr/local/tool/toolcli\n"},
	{"in_another_order", "# site\nFilter Script:  f  g\nCli Name: a b\ncli name:c\nCli Path:/opt/x/\r\n",
         "______________filter = f_________\n"
         "______________name = a_________\n"
         "______________path = /opt/x/_________\n"
         "--oh, Got string:/opt/x/a\n"},
	{"slashes", "Cli Path:/opt/x/\nCli Name://cli\n",
         "______________path = /opt/x/_________\n"
         "______________name = //cli_________\n"
         "--oh, Got string:/opt/x/cli\n"},
	{"blank_before_the_path", "Cli Path: /opt/x \t\nCli Name:cli\n",
         "______________path =  /opt/x_________\n"
         "______________name = cli_________\n"
         "--oh, Got string: /opt/x/cli\n"},
	{"twice", "Cli Name:a\nCli Path:/x\nCli Name:b\nCli Path:/y\n",
         "______________name = a_________\n"
         "______________path = /x_________\n"
         "______________name = b_________\n"
         "______________path = /y_________\n"
         "--oh, Got string:/y/b\n"},
	{"emptied", "Cli Name:a\nCli Path:/x\nCli Path: \n",
         "______________name = a_________\n"
         "______________path = /x_________\n"
         "______________path = _________\n"
         "---oh, there is a equal zero.------------------\n"},
	// Nothing behind a key leaves what was there.
	{"kept", "Cli Name:a\nCli Path:/x\nCli Name:\nFilter Script:\nCli Path:",
         "______________name = a_________\n"
         "______________path = /x_________\n"
         "______________name = a_________\n"
         "______________filter = _________\n"
         "______________path = /x_________\n"
         "--oh, Got string:/x/a\n"},
	{"no_path", "Cli Name:a\n",
         "______________name = a_________\n"
         "---oh, there is a equal zero.------------------\n"},
	{"no_name", "Cli Path:/x\n",
         "______________path = /x_________\n"
         "---oh, there is a equal zero.------------------\n"},
	{"empty", "", "---oh, there is a equal zero.------------------\n"},
};

class Configured : public TraceTable, public testing::WithParamInterface<configuration_t>
{
};

// Whoever asks first reads it.
TEST_P(Configured, IsTraced)
{
	configure(GetParam().text);
	EXPECT_EQ(traced([] { GetCliConfig(); }), GetParam().expected);
	EXPECT_EQ(traced([] { GetCliConfig(); }), "");
	EXPECT_EQ(traced([] { GetFilterScript(); }), "");
	g_nHaveInit = 0;
	g_szCliPath[0] = g_szCliName[0] = g_szCliFullName[0] = g_szFilterScript[0] = '\0';
	EXPECT_EQ(traced([] { GetFilterScript(); }), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(All, Configured, testing::ValuesIn(CONFIGURATIONS),
                         [](const auto &row) { return std::string(row.param.name); });

// The trace names the tool and not the file; each call tries again.
TEST_F(TraceTable, ConfigurationThatIsMissing)
{
	std::filesystem::remove(site_ / "config");
	EXPECT_EQ(traced([] { GetCliConfig(); }), "can not open the file:\n");
	EXPECT_EQ(traced([] { GetFilterScript(); }), "can not open the file:\n");
	snprintf(g_szCliFullName, sizeof g_szCliFullName, "/x/tool");
	EXPECT_EQ(traced([] { GetCliConfig(); }), "can not open the file:/x/tool\n");
}

// ---- names, positions ----

TEST_F(TraceTable, NameWithoutAPlace)
{
	int result = 0;
	EXPECT_EQ(traced([&] { result = CreateOneUuid(nullptr); }), "[position], Hello, NULL.\n");
	EXPECT_EQ(result, -1);
}

TEST_F(TraceTable, NameThatComesOutEmpty)
{
	use_names(names_t::EMPTY);
	char name[37] = "before";
	int result = 0;
	EXPECT_EQ(traced([&] { result = CreateOneUuid(name); }), NO_NAME);
	EXPECT_EQ(result, -1);
	EXPECT_STREQ(name, "");
}

// A run is: names, script, terminal, tool, filter, answer.
TEST_F(TraceTable, MostStepsOfARunTellTheirPosition)
{
	answer(CONTROLLERS);
	GetCliConfig();
	const std::string whole = whole_trace([] { EXPECT_EQ(list_controllers(), 1); });
	EXPECT_EQ(without_positions(whole), "");
	EXPECT_GT(std::count(whole.begin(), whole.end(), '\n'), 3) << whole;
}

} // namespace
