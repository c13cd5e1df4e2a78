// SPDX-License-Identifier: Apache-2.0
// What an output of the controller tool tells, and what is asked of a site beside its own causes.
#include "doctor_site.h"
#include "plugin.h"
#include "replay/host_dir.h"
#include "tool_answer.h"
#include "tool_look.h"

#include <gmock/gmock.h>

#include <chrono>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

// ---- outputs ----

TEST(ToolAnswer, loses_what_paints_the_terminal)
{
	EXPECT_EQ(without_paint("\033[H\033[2Jone\r\n\0337\033[24;1Htwo\0338\033(B\033[?25lx"), "one\ntwox");
	EXPECT_EQ(without_paint("half\033[24;"), "half");
	EXPECT_EQ(without_paint("half\033"), "half");
}

TEST(ToolAnswer, has_the_echo_of_a_command_at_the_start_of_a_line)
{
	EXPECT_TRUE(has_echo("CLI>\nExecuting: exit\n", "exit"));
	EXPECT_TRUE(has_echo("Executing: EXIT", "exit"));
	EXPECT_TRUE(has_echo("Executing: exit \n", "exit"));
	EXPECT_FALSE(has_echo("Executing: exi", "exit"));
	EXPECT_FALSE(has_echo("Executing: exits\n", "exit"));
	EXPECT_FALSE(has_echo("say Executing: exit\n", "exit"));
	EXPECT_FALSE(has_echo("", "exit"));
}

const char PAGER[] = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";

TEST(ToolAnswer, has_an_echo_behind_the_pagers_prompt)
{
	EXPECT_TRUE(has_echo(std::string(PAGER) + PAGER + "  Executing: exit\n", "exit"));
}

TEST(ToolAnswer, has_the_first_error)
{
	EXPECT_EQ(error_in("Executing: open aac0\nCommand Error: <one>\nCommand Error: <two>\n"),
	          "Command Error: <one>");
	EXPECT_EQ(error_in("Parsing Error: <one>"), "Parsing Error: <one>");
	EXPECT_EQ(error_in("no error\n"), "");
}

TEST(ToolAnswer, lists_controllers_from_the_rule_to_the_blank_line)
{
	const std::string table = "Adapter Name  Adapter Type\n------------  ------------\n";
	EXPECT_THAT(controllers_in("Executing: controller list\n" + table +
	                           "aac0          EXAMPLE 2200S\nmy aac  EXAMPLE\n" + PAGER +
	                           "  aac2  EXAMPLE\n\naac9  EXAMPLE\n"),
	            ElementsAre("aac0", "my aac", "aac2"));
	EXPECT_THAT(controllers_in(table + "aac0  EXAMPLE\n"), IsEmpty());
	EXPECT_THAT(controllers_in("Executing: controller list\n" + table + "CLI>\naac0  EXAMPLE\n"),
	            IsEmpty());
}

// ---- sites ----

class SiteOf
{
public:
	explicit SiteOf(const std::string &name) : site(name)
	{
		EXPECT_TRUE(site.prepare());
		plugin.set_configuration(site.root_ / "raid.cfg");
	}
	std::string found(const std::string &controller = "", bool runs_tool = true)
	{
		enquiry_t asked(&plugin, nullptr, controller, limit);
		patient_t patient = {asked, {}, {}, runs_tool, nullptr};
		tool_look_t look;
		if (runs_tool) {
			look = look_at_tool(patient);
			patient.tool = &look;
		}
		return lines_of(SITE_CHECKS, patient) + lines_of(TOOL_CHECKS, patient);
	}

	SiteDir site;
	plugin_t plugin{DISKSCOUT_TEST_PLUGIN};
	std::chrono::seconds limit{1};
};

TEST(DoctorTool, is_not_run_unasked)
{
	SiteOf site("tool-status");
	EXPECT_EQ(site.found("", false), "");
}

TEST(DoctorTool, opens_the_named_controller_alone)
{
	SiteOf site("controller-held");
	EXPECT_EQ(site.found("aac0"), "");
	EXPECT_EQ(site.found("aac1"), "problem controller_held: another program holds controller aac1\n");
}

TEST(DoctorTool, misses_a_named_controller)
{
	SiteOf site("fine");
	EXPECT_EQ(site.found("aac7"), "problem controller_missing: there is no controller \"aac7\", there is "
	                              "aac0, aac1\n");
}

TEST(DoctorTool, is_not_run_again_where_it_would_run_out_of_time)
{
	SiteOf site("fine-simulated");
	// Each run takes more than a third of the time, and is far from all of it on a busy machine, too.
	site.site.environment_.set("RAIDSIM_FAULT", "slow=1100");
	site.limit = std::chrono::seconds(3);
	EXPECT_EQ(site.found(), "");
	enquiry_t asked(&site.plugin, nullptr, "", site.limit);
	EXPECT_TRUE(look_at_tool({asked, {}, {}, true, nullptr}).is_out_of_time);
}

TEST(DoctorTool, does_nothing_but_list_open_and_leave)
{
	SiteOf site("fine");
	write(site.site.root_ / "bin" / "tool",
	      "#!/bin/sh\ntee -a " + (site.site.root_ / "asked").string() + " | \"${0%/*}/original\"\n");
	EXPECT_EQ(site.found(), "");
	std::istringstream asked(text_in(site.site.root_ / "asked"));
	std::vector<std::string> commands;
	for (std::string line; std::getline(asked, line);) {
		if (line.find_first_not_of(' ') != std::string::npos)
			commands.push_back(line);
	}
	EXPECT_THAT(commands,
	            ElementsAre("controller list", "exit", "open aac0", "exit", "open aac1", "exit"));
}

// Of those who may have no more files open nothing is known.
TEST(DoctorTool, is_not_started_without_descriptors)
{
	SiteOf site("fine");
	enquiry_t asked(&site.plugin, nullptr, "", std::chrono::seconds(1));
	patient_t patient = {asked, {}, {}, true, nullptr};
	rlimit before;
	ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
	const rlimit none = {3, before.rlim_max};
	ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
	const tool_look_t look = look_at_tool(patient);
	ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
	patient.tool = &look;
	EXPECT_EQ(lines_of(TOOL_CHECKS, patient), "problem tool_started: the controller tool was not run: no "
	                                          "process can be started for it: Too many open files\n");
}

TEST(DoctorSite, may_not_be_readable)
{
	SiteOf site("fine");
	const auto file = site.site.root_ / "raid.cfg";
	const uid_t user = geteuid();
	constexpr uid_t NOBODY = 65534;
	fs::permissions(file, fs::perms(0));
	fs::permissions(site.site.root_, fs::perms(0755));
	ASSERT_EQ(user == 0 ? seteuid(NOBODY) : 0, 0);
	const std::string found = site.found("", false);
	ASSERT_EQ(seteuid(user), 0);
	EXPECT_EQ(found, "problem config_unreadable: the configuration " + file.string() +
	                         " cannot be read: Permission denied\n");
}

// Everybody's own group is the usual one of those who are not root.
TEST(DoctorSite, may_be_a_groups)
{
	SiteOf site("fine");
	const auto bin = site.site.root_ / "bin";
	const bool is_root = geteuid() == 0;
	constexpr gid_t STAFF = 50;
	ASSERT_EQ(chown(bin.c_str(), geteuid(), is_root ? STAFF : getegid()), 0);
	fs::permissions(bin, fs::perms(0770));
	EXPECT_EQ(site.found("", false),
	          is_root ? "warning config_writable: " + bin.string() + " can be written by its group 50\n"
	                  : "");
	if (is_root) {
		ASSERT_EQ(chown(bin.c_str(), 65534, 0), 0);
		EXPECT_EQ(site.found("", false), "problem config_writable: " + bin.string() +
		                                         " can be written by its owner, user 65534\n");
	}
}

// A host whose usual place of the configuration can be looked into.
class DoctorHost : public HostDir
{
protected:
	findings_t of(const std::string &word, bool asks_tool)
	{
		enquiry_t asked(&plugin_, nullptr, "", std::chrono::seconds(1));
		for (std::size_t i = 0; i < SITE_CHECKS.count; i++) {
			if (word == SITE_CHECKS.first[i].word)
				return SITE_CHECKS.first[i].look({asked, {}, {}, asks_tool, nullptr});
		}
		ADD_FAILURE() << word;
		return {};
	}
	std::string all(bool asks_tool)
	{
		enquiry_t asked(&plugin_, nullptr, "", std::chrono::seconds(1));
		return lines_of(SITE_CHECKS, {asked, {}, {}, asks_tool, nullptr});
	}

	plugin_t plugin_{DISKSCOUT_TEST_PLUGIN};
};

TEST_F(DoctorHost, without_a_configuration_is_well)
{
	ASSERT_EQ(show(""), 0);
	EXPECT_EQ(all(false), "");
	const findings_t found = of("config_missing", false);
	ASSERT_EQ(found.size(), 1U);
	EXPECT_EQ(found[0].verdict, verdict_t::FINE);
	EXPECT_EQ(found[0].text, "there is no configuration /root/hardraid.cfg: this host is told to have no "
	                         "RAID controller");
	EXPECT_TRUE(of("config_key", false).empty());
}

TEST_F(DoctorHost, without_a_configuration_cannot_list_controllers)
{
	ASSERT_EQ(show(""), 0);
	EXPECT_EQ(all(true),
	          "problem config_missing: the configuration /root/hardraid.cfg cannot be read: No "
	          "such file or directory (--config names another one)\n");
}

TEST_F(DoctorHost, has_no_room_for_a_run)
{
	const SiteDir site("fine");
	plugin_.set_configuration(site.root_ / "raid.cfg");
	unsetenv("TMPDIR");
	ASSERT_EQ(show("mount /tmp 4096 100000 15\n"), 0);
	EXPECT_EQ(all(false), "problem run_directory_full: /tmp is full: 61440 bytes are free\n");
	ASSERT_EQ(show("mount /tmp 4096 100000 16\n"), 0);
	EXPECT_EQ(all(false), "");
}

} // namespace
