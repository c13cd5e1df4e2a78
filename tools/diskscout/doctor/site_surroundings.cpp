// SPDX-License-Identifier: Apache-2.0
// What the programs of a site stand in.
#include "site_surroundings.h"

#include "finding.h"
#include "private_directory.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <set>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace fs = std::filesystem;

// ---- where the run's files are made ----

static findings_t bad_run_directory_of(const site_t &)
{
	const std::string directory = parent_of_private_directories();
	struct stat status;
	if (stat(directory.c_str(), &status) == 0 && !S_ISDIR(status.st_mode))
		errno = ENOTDIR;
	else if (access(directory.c_str(), W_OK | X_OK) == 0)
		return {};
	return problem(fmt::format("no files can be made in {}: {}", directory, strerror(errno)));
}

findings_t bad_run_directory(const patient_t &at)
{
	return where_configured(at, bad_run_directory_of);
}

static findings_t full_run_directory_of(const site_t &)
{
	// A script and two outputs, each of them an answer of a few lines as a rule.
	constexpr unsigned long long LEAST = 64 << 10;
	const std::string directory = parent_of_private_directories();
	struct statvfs space;
	if (statvfs(directory.c_str(), &space) != 0)
		return {}; // it is not there at all, which another check tells
	const bool is_root = geteuid() == 0;
	const unsigned long long bytes =
		static_cast<unsigned long long>(is_root ? space.f_bfree : space.f_bavail) * space.f_frsize;
	if (bytes < LEAST && space.f_blocks > 0)
		return problem(fmt::format("{} is full: {} bytes are free", directory, bytes));
	// Some filesystems count no files at all.
	if (space.f_files > 0 && (is_root ? space.f_ffree : space.f_favail) == 0)
		return problem(fmt::format("{} is full: there can be no more files", directory));
	return {};
}

findings_t full_run_directory(const patient_t &at)
{
	return where_configured(at, full_run_directory_of);
}

// ---- PATH ----

static findings_t path_without_rm_of(const site_t &)
{
	return not_in_path("rm");
}

findings_t path_without_rm(const patient_t &at)
{
	return where_configured(at, path_without_rm_of);
}

// ---- who can write them ----

static bool is_trusted(uid_t user)
{
	return user == 0 || user == geteuid();
}

// Everybody's own group is the usual one of ordinary users.
static bool is_trusted_group(gid_t group)
{
	return group == 0 || (geteuid() != 0 && group == getegid());
}

// Whoever is in a group was put there by root: on some systems the group staff owns /usr/local.
static findings_t writers_of(const std::string &path)
{
	struct stat status;
	if (stat(path.c_str(), &status) != 0)
		return {};
	if (!is_trusted(status.st_uid))
		return problem(fmt::format("{} can be written by its owner, user {}", path, status.st_uid));
	// Nobody takes away there what is not his own.
	if (S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX))
		return {};
	if (status.st_mode & S_IWOTH)
		return problem(fmt::format("{} can be written by everybody", path));
	if ((status.st_mode & S_IWGRP) && !is_trusted_group(status.st_gid))
		return warning(fmt::format("{} can be written by its group {}", path, status.st_gid));
	return {};
}

using paths_t = std::set<std::string>;

// A link, what it leads to, and the directories of both.
static void add(paths_t &paths, const std::string &file)
{
	std::error_code error;
	const fs::path target = fs::canonical(file, error);
	if (error)
		return;
	paths.insert(target);
	paths.insert(target.parent_path());
	paths.insert(fs::absolute(file).parent_path());
}

static findings_t writable_by_others_of(const site_t &site)
{
	paths_t paths;
	add(paths, site.file);
	for (const program_t &program : programs_of(*site.config)) {
		if (!program.path.empty() && program.path.front() == '/')
			add(paths, program.path);
	}
	findings_t found;
	for (const std::string &path : paths)
		append(found, writers_of(path));
	return found;
}

findings_t writable_by_others(const patient_t &at)
{
	return where_configured(at, writable_by_others_of);
}
