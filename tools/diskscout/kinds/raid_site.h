// SPDX-License-Identifier: Apache-2.0
// What the RAID controllers of this host are asked: lists of each controller, every one asked for once, at
// the first call.
//
// The plug-in's operations tell more than its queries: sizes that the records have no room for, whole labels,
// tasks, defects, and why they failed. A plug-in without them is asked by the queries, and what only the
// operations know is then absent.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_RAID_SITE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_RAID_SITE_H

#include "diskscout_raid.h"
#include "plugin.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class enquiry_t;

// Rows are plain data: they come from another process as bytes. Each but a defect row begins with the record
// of its query, as it would hold it; `next` of it is null.
enum : long long { NOT_TOLD = -1 };

struct raid_container_t {
	HWRAID_LIST record;
	const char *controller; // its name
	long long total_size;   // bytes; NOT_TOLD
	KESTREL_STRING label;   // whole
	char device[256];       // the operating system's name, "/dev/sda"; empty: not told
};

struct raid_disk_t {
	HWRAID_DISK_LIST record;
	const char *controller;
};

// A free area of a disk.
struct raid_space_t {
	HWRAID_SPACE_LIST record;
	const char *controller;
	int disk;             // its address
	long long offset;     // bytes; NOT_TOLD
	long long free_space; // bytes; NOT_TOLD
};

// A piece of a disk that a container uses.
struct raid_piece_t {
	HWRAID_PARTITION_LIST record;
	const char *controller;
};

struct raid_task_t {
	aac_task record;
	const char *controller;
};

// Each disk has one, also when its defects cannot be told.
struct raid_defects_t {
	const char *controller;
	int disk;           // its address
	int primary, grown; // counts; -1: not told
	int result;         // AAC_OK, or why they are not told
};

// Whether a list is whole, and why not.
struct raid_failure_t {
	bool failed = false;
	bool is_timed_out = false;
	bool from_operations = false;
	int result = AAC_OK;      // of the operation; AAC_RUN_FAILED also of a query that failed
	std::string where = {};   // of a failure, words behind "failed": " for disk 0:00:0"; may be empty
	std::string failure = {}; // why: "timed out after 5 s at container list", "another application holds
	                          // the controller"; empty when the plug-in says no more than that it failed
};

template <typename Row> struct raid_list_t : raid_failure_t {
	std::vector<Row> rows = {}; // what was found, also before it failed
};

// In words: "another application holds the controller". Empty for what says no more than a failure.
std::string_view words_of_result(int result);

class raid_site_t
{
public:
	// One controller may be named; empty: all that are listed. As it was before there were operations:
	// the first one of the list in place of all, told by the queries.
	raid_site_t(enquiry_t &from, const plugin_t &plugin, std::string named, bool as_before);
	~raid_site_t();
	raid_site_t(const raid_site_t &) = delete;
	raid_site_t &operator=(const raid_site_t &) = delete;

	// Of those that the lists below can be asked of: the named one, whether it is listed or not. The list
	// of controllers is the enquiry's.
	const std::vector<std::string> &names();
	// Of the list that the names come from.
	const raid_failure_t &failure_to_name() const { return failure_to_name_; }
	bool is_as_before() const { return as_before_; }

	const raid_list_t<raid_container_t> &containers(const std::string &controller);
	const raid_list_t<raid_disk_t> &disks(const std::string &controller);
	const raid_list_t<raid_space_t> &spaces(const std::string &controller);
	const raid_list_t<raid_piece_t> &pieces(const std::string &controller);
	// Without operations these two fail, and tell that.
	const raid_list_t<raid_task_t> &tasks(const std::string &controller);
	const raid_list_t<raid_defects_t> &defects(const std::string &controller);

private:
	struct lists_t;
	lists_t &lists_of(const std::string &controller);
	raid_list_t<raid_space_t> spaces_of(const std::string &controller, int disk);
	raid_list_t<raid_defects_t> defects_of(const std::string &controller, int disk);

	enquiry_t &from_;
	std::string named_;
	bool as_before_;
	struct operations_t;
	std::unique_ptr<const operations_t> operations_; // null: there are none
	std::unique_ptr<std::vector<std::string>> names_;
	raid_failure_t failure_to_name_;
	std::map<std::string, std::unique_ptr<lists_t>> lists_;
};

#endif
