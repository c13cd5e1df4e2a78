// Sites that are sick in one way each, and some that are well: every directory below sites/ is one.
#include "check.h"
#include "enquiry.h"
#include "plugin.h"
#include "process_tree.h"
#include "tool_look.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;

const fs::path SITES = DISKSCOUT_TEST_SITES;

std::string text_in(const fs::path &file)
{
	std::ifstream in(file, std::ios::binary);
	std::ostringstream text;
	text << in.rdbuf();
	return text.str();
}

void write(const fs::path &file, const std::string &text)
{
	std::ofstream(file, std::ios::binary) << text;
}

std::string replaced(std::string text, const std::string &what, const std::string &with)
{
	for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
		text.replace(at, what.size(), with);
	return text;
}

// Variables of the environment, as they were when this ends.
class Environment
{
public:
	~Environment()
	{
		for (const auto &[name, value] : before_) {
			if (value)
				setenv(name.c_str(), value->c_str(), 1);
			else
				unsetenv(name.c_str());
		}
	}
	void set(const std::string &name, const std::string &value)
	{
		const char *const now = getenv(name.c_str());
		before_.emplace(name, now ? std::optional<std::string>(now) : std::nullopt);
		setenv(name.c_str(), value.c_str(), 1);
	}

private:
	std::map<std::string, std::optional<std::string>> before_;
};

// What a site is made of, in a directory of its own.
class Site : public testing::TestWithParam<std::string>
{
protected:
	Site()
	{
		std::string name = testing::TempDir() + "site-XXXXXX";
		root_ = fs::canonical(mkdtemp(name.data()));
		fs::create_directories(root_ / "bin");
		fs::create_directories(root_ / "tmp");
		for (const char *program : {"tool", "filter"})
			install(program);
		install("tool", "original", SITES / "common");
		fs::copy(DISKSCOUT_TEST_RAIDSIM, root_ / "bin" / "raidsim");
		fs::copy(DISKSCOUT_TEST_FILTER, root_ / "bin" / "diskscout-filter");
		write(root_ / "raid.cfg", here(text_in(of_site("raid.cfg"))));
		// Nobody's umask counts.
		fs::permissions(root_ / "raid.cfg", fs::perms(0600));
		for (const auto &entry : fs::recursive_directory_iterator(root_ / "bin"))
			fs::permissions(entry, fs::perms(0700));
		for (const char *directory : {"bin", "tmp"})
			fs::permissions(root_ / directory, fs::perms(0700));
	}
	~Site() override
	{
		std::error_code ignored;
		fs::remove_all(root_, ignored);
	}

	fs::path of_site(const std::string &name) const
	{
		const fs::path own = SITES / GetParam() / name;
		return fs::exists(own) ? own : SITES / "common" / name;
	}
	void install(const std::string &program)
	{
		install(program, program, of_site(program).parent_path());
	}
	void install(const std::string &program, const std::string &as, const fs::path &from)
	{
		fs::copy(from / program, root_ / "bin" / as);
	}
	std::string here(const std::string &text) const
	{
		return replaced(replaced(text, "@SITE@", root_), "@FILTER@",
		                root_ / "bin" / "diskscout-filter");
	}
	void prepare()
	{
		const fs::path script = SITES / GetParam() / "prepare";
		if (fs::exists(script)) {
			const std::string command =
				fmt::format("cd {} && sh -eu {}", root_.string(), script.string());
			ASSERT_EQ(system(command.c_str()), 0);
		}
		environment_.set("TMPDIR", root_ / "tmp");
		environment_.set("RAIDSIM_STATE", root_ / "state.txt");
		std::istringstream lines(here(text_in(SITES / GetParam() / "environment")));
		for (std::string line; std::getline(lines, line);)
			environment_.set(line.substr(0, line.find('=')), line.substr(line.find('=') + 1));
	}

	fs::path root_;
	Environment environment_;
};

std::string line_of(const check_t &check, const finding_t &found)
{
	const char *const verdict = found.verdict == verdict_t::PROBLEM ? "problem" : "warning";
	return fmt::format("{} {}: {}\n", verdict, check.word, found.text);
}

std::string lines_of(const checks_t &checks, const patient_t &at)
{
	std::string text;
	for (std::size_t i = 0; i < checks.count; i++) {
		for (const finding_t &found : checks.first[i].look(at)) {
			const bool is_sick =
				found.verdict == verdict_t::PROBLEM || found.verdict == verdict_t::WARNING;
			text += is_sick ? line_of(checks.first[i], found) : "";
		}
	}
	return text;
}

TEST_P(Site, has_its_cause)
{
	ASSERT_NO_FATAL_FAILURE(prepare());
	const plugin_t plugin(DISKSCOUT_TEST_PLUGIN);
	plugin.set_configuration(root_ / "raid.cfg");
	const auto begin = std::chrono::steady_clock::now();
	{
		enquiry_t asked(&plugin, nullptr, "", std::chrono::seconds(1));
		patient_t patient = {asked, {}, {}, true, nullptr};
		const tool_look_t look = look_at_tool(patient);
		patient.tool = &look;
		EXPECT_EQ(lines_of(SITE_CHECKS, patient) + lines_of(TOOL_CHECKS, patient),
		          here(text_in(SITES / GetParam() / "expected")));
		EXPECT_TRUE(asked.left_behind().empty());
	}
	EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(8));
	EXPECT_TRUE(fs::is_empty(root_ / "tmp"));
	EXPECT_TRUE(descendants().empty());
}

std::vector<std::string> sites()
{
	std::vector<std::string> names;
	for (const auto &entry : fs::directory_iterator(SITES)) {
		if (entry.path().filename() != "common" && entry.is_directory())
			names.push_back(entry.path().filename());
	}
	std::sort(names.begin(), names.end());
	return names;
}

INSTANTIATE_TEST_SUITE_P(Doctor, Site, testing::ValuesIn(sites()), [](const auto &given) {
	return replaced(replaced(given.param, "-", "_"), "=", "_");
});

} // namespace
