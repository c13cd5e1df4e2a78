// SPDX-License-Identifier: Apache-2.0
// A site of sites/, put together in a directory of its own, and what is found of it.
#ifndef DISKSCOUT_TESTS_TOOLS_DOCTOR_SITE_H
#define DISKSCOUT_TESTS_TOOLS_DOCTOR_SITE_H

#include "check.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <sys/stat.h>

namespace fs = std::filesystem;

const inline fs::path SITES = DISKSCOUT_TEST_SITES;

inline std::string text_in(const fs::path &file)
{
	std::ifstream in(file, std::ios::binary);
	std::ostringstream text;
	text << in.rdbuf();
	return text.str();
}

inline void write(const fs::path &file, const std::string &text)
{
	std::ofstream(file, std::ios::binary) << text;
}

inline std::string replaced(std::string text, const std::string &what, const std::string &with)
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
class SiteDir
{
public:
	explicit SiteDir(const std::string &name) : name_(name)
	{
		std::string directory = testing::TempDir() + "site-XXXXXX";
		root_ = fs::canonical(mkdtemp(directory.data()));
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
		for (const char *made : {"bin", "tmp"})
			fs::permissions(root_ / made, fs::perms(0700));
	}
	~SiteDir()
	{
		std::error_code ignored;
		fs::remove_all(root_, ignored);
	}

	fs::path of_site(const std::string &name) const
	{
		const fs::path own = SITES / name_ / name;
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
	// What the site does itself, and the environment that it wants.
	bool prepare()
	{
		const fs::path script = SITES / name_ / "prepare";
		const std::string command =
			fmt::format("cd {} && sh -eu {}", root_.string(), script.string());
		if (fs::exists(script) && system(command.c_str()) != 0)
			return false;
		environment_.set("TMPDIR", root_ / "tmp");
		environment_.set("RAIDSIM_STATE", root_ / "state.txt");
		std::istringstream lines(here(text_in(SITES / name_ / "environment")));
		for (std::string line; std::getline(lines, line);)
			environment_.set(line.substr(0, line.find('=')), line.substr(line.find('=') + 1));
		return true;
	}

	std::string name_;
	fs::path root_;
	Environment environment_;
};

inline std::string line_of(const check_t &check, const finding_t &found)
{
	const char *const verdict = found.verdict == verdict_t::PROBLEM ? "problem" : "warning";
	return fmt::format("{} {}: {}\n", verdict, check.word, found.text);
}

inline std::string lines_of(const checks_t &checks, const patient_t &at)
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

#endif
