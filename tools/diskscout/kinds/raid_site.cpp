// SPDX-License-Identifier: Apache-2.0
// What the RAID controllers of this host are asked.
#include "raid_site.h"

#include "enquiry.h"
#include "progress.h"
#include "raid.h"
#include "raid_operations.h"

#include <algorithm>

struct raid_site_t::operations_t : raid_operations_t {
};

struct raid_site_t::lists_t {
	explicit lists_t(std::string of) : controller(std::move(of)) {}
	std::string controller; // that the rows point to
	std::optional<raid_list_t<raid_container_t>> containers;
	std::optional<raid_list_t<raid_disk_t>> disks;
	std::optional<raid_list_t<raid_space_t>> spaces;
	std::optional<raid_list_t<raid_piece_t>> pieces;
	std::optional<raid_list_t<raid_task_t>> tasks;
	std::optional<raid_list_t<raid_defects_t>> defects;
};

std::string_view words_of_result(int result)
{
	struct words_t {
		int result;
		std::string_view words;
	};
	static constexpr words_t WORDS[] = {
		{AAC_RUN_FAILED, "the controller tool or the filter has failed, or the answer was cut"},
		{AAC_NO_SUCH_DEVICE, "the controller has no such disk"},
		{AAC_NO_SUCH_CONTAINER, "the controller has no such container"},
		{AAC_BAD_PARAMETER, "the disk does not take the question"},
		{AAC_BAD_DISK_STATUS, "the disk is failing or does not answer"},
		{AAC_CONTROLLER_UNUSABLE, "the controller is not there or cannot be opened"},
		{AAC_CONTROLLER_BUSY, "another application holds the controller"},
		{AAC_TOOL_ERROR, "the controller tool reports an error, or its answer cannot be read"},
	};
	for (const words_t &row : WORDS) {
		if (row.result == result)
			return row.words;
	}
	return "";
}

raid_site_t::raid_site_t(enquiry_t &from, const plugin_t &plugin, std::string named, bool as_before)
    : from_(from), named_(std::move(named)), as_before_(as_before)
{
	const std::optional<raid_operations_t> found = operations_of(plugin);
	if (found && !as_before)
		operations_.reset(new operations_t{*found});
}

raid_site_t::~raid_site_t() = default;

const std::vector<std::string> &raid_site_t::names()
{
	if (names_)
		return *names_;
	names_ = std::make_unique<std::vector<std::string>>();
	if (!named_.empty()) {
		names_->push_back(named_);
		return *names_;
	}
	const item_list_t &listed = from_.controllers();
	for (const aac_controller *c : listed.records<aac_controller>())
		names_->push_back(text_of(c->Adapter_Name));
	if (listed.failed()) {
		failure_to_name_.failed = true;
		failure_to_name_.is_timed_out = listed.timed_out();
		failure_to_name_.where = " at the list of controllers";
		failure_to_name_.failure = listed.failure();
	}
	if (as_before_ && names_->size() > 1)
		names_->resize(1);
	return *names_;
}

raid_site_t::lists_t &raid_site_t::lists_of(const std::string &controller)
{
	auto &lists = lists_[controller];
	if (!lists)
		lists.reset(new lists_t(controller));
	return *lists;
}

// ---- by operations ----

// What becomes a line of the tool's script may hold no line end: it would begin a command of its own. The
// queries refuse it themselves.
static bool is_controller_name(const std::string &name)
{
	return !name.empty() && std::none_of(name.begin(), name.end(), [](char c) {
		return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
	});
}

template <typename Row>
static raid_list_t<Row> ask_operation(enquiry_t &from, const char *stage, const std::string &controller,
                                      const work_t &work)
{
	if (is_controller_name(controller))
		return list_from<Row>(from.work(stage, enquiry_t::place_t::PRIVATE, work));
	raid_list_t<Row> refused;
	refused.failed = refused.from_operations = true;
	refused.result = AAC_CONTROLLER_UNUSABLE;
	refused.failure = words_of_result(AAC_CONTROLLER_UNUSABLE);
	return refused;
}

// ---- by queries ----

static raid_container_t row_of(const HWRAID_LIST &record)
{
	raid_container_t row{};
	row.record = record;
	row.total_size = NOT_TOLD;
	memcpy(row.label, record.szLabel, sizeof row.label);
	return row;
}

static raid_disk_t row_of(const HWRAID_DISK_LIST &record)
{
	return {record, nullptr};
}

static raid_space_t row_of(const HWRAID_SPACE_LIST &record)
{
	return {record, nullptr, NO_ADDRESS, NOT_TOLD, NOT_TOLD};
}

static raid_piece_t row_of(const HWRAID_PARTITION_LIST &record)
{
	return {record, nullptr};
}

template <typename Row>
static raid_list_t<Row> ask_query(enquiry_t &from, UINT query, const std::string &argument)
{
	const item_list_t list = from.ask(query, argument);
	raid_list_t<Row> answer;
	answer.failed = list.failed();
	answer.is_timed_out = list.timed_out();
	answer.failure = list.failure();
	answer.result = list.failed() ? AAC_RUN_FAILED : AAC_OK;
	for (const auto *record : list.records<decltype(Row::record)>()) {
		answer.rows.push_back(row_of(*record));
		answer.rows.back().record.next = nullptr;
	}
	return answer;
}

// ---- lists ----

// The list, asked for if it has not been.
template <typename Row, typename Ask>
static const raid_list_t<Row> &remembered(std::optional<raid_list_t<Row>> &list,
                                          const std::string &controller, const Ask &ask)
{
	if (!list) {
		list = ask();
		for (Row &row : list->rows)
			row.controller = controller.c_str();
	}
	return *list;
}

// The tasks go first: a rebuild that ends meanwhile is told a little too long, never a container as whole too
// early.
const raid_list_t<raid_container_t> &raid_site_t::containers(const std::string &controller)
{
	lists_t &lists = lists_of(controller);
	if (operations_)
		tasks(controller);
	return remembered(lists.containers, lists.controller, [&] {
		if (!operations_)
			return ask_query<raid_container_t>(from_, CMD_GET_CONTAINERS, controller);
		return ask_operation<raid_container_t>(from_, "container list", controller, [&](auto &to) {
			tell_containers(*operations_, controller.c_str(), to);
		});
	});
}

const raid_list_t<raid_disk_t> &raid_site_t::disks(const std::string &controller)
{
	lists_t &lists = lists_of(controller);
	return remembered(lists.disks, lists.controller, [&] {
		if (!operations_)
			return ask_query<raid_disk_t>(from_, CMD_GET_RAID_DISKS, controller);
		return ask_operation<raid_disk_t>(from_, "disk list", controller, [&](auto &to) {
			tell_disks(*operations_, controller.c_str(), to);
		});
	});
}

const raid_list_t<raid_piece_t> &raid_site_t::pieces(const std::string &controller)
{
	lists_t &lists = lists_of(controller);
	return remembered(lists.pieces, lists.controller, [&] {
		if (!operations_)
			return ask_query<raid_piece_t>(from_, CMD_GET_RAID_PARTITIONS, controller);
		return ask_operation<raid_piece_t>(from_, "disk show partition", controller, [&](auto &to) {
			tell_pieces(*operations_, controller.c_str(), to);
		});
	});
}

template <typename Row> static raid_list_t<Row> not_told_by_queries()
{
	raid_list_t<Row> list;
	list.failed = true;
	list.result = AAC_RUN_FAILED;
	list.failure = "the plug-in has no operation for it";
	return list;
}

const raid_list_t<raid_task_t> &raid_site_t::tasks(const std::string &controller)
{
	lists_t &lists = lists_of(controller);
	return remembered(lists.tasks, lists.controller, [&] {
		if (!operations_)
			return not_told_by_queries<raid_task_t>();
		return ask_operation<raid_task_t>(from_, "task list", controller, [&](auto &to) {
			tell_tasks(*operations_, controller.c_str(), to);
		});
	});
}

// ---- disk by disk ----

static void add_failure(const std::string &where, bool is_first, const raid_failure_t &one,
                        raid_failure_t &all)
{
	all.where += where;
	if (is_first) {
		all.result = one.result;
		all.failure = one.failure;
	}
	all.failed = true;
	all.is_timed_out |= one.is_timed_out;
}

/*
 * Of a list of disks that is not whole those that are known. A tool that hangs for one disk hangs for the
 * next, too, and each would take as long: they are left out, and named as the others that failed.
 */
template <typename Row, typename Ask>
static raid_list_t<Row> ask_disks(const char *what, const std::vector<int> &disks,
                                  const raid_failure_t &before, const Ask &ask)
{
	raid_list_t<Row> all;
	if (before.failed)
		add_failure(" at the list of disks", true, before, all);
	progress_t progress(what, disks.size());
	for (const int disk : disks) {
		progress.next(address(disk));
		raid_list_t<Row> one;
		if (all.is_timed_out)
			one.failed = true;
		else
			one = ask(disk);
		all.from_operations |= one.from_operations;
		if (one.failed)
			add_failure((all.failed ? ", " : " for disk ") + address(disk), !all.failed, one,
			            all);
		all.rows.insert(all.rows.end(), one.rows.begin(), one.rows.end());
	}
	return all;
}

// The disk's address as it lies in memory, then the controller's name.
static std::string argument_for(int disk, const std::string &controller)
{
	return std::string(reinterpret_cast<const char *>(&disk), sizeof disk) + controller;
}

raid_list_t<raid_space_t> raid_site_t::spaces_of(const std::string &controller, int disk)
{
	auto list =
		operations_
			? ask_operation<raid_space_t>(
				  from_, "disk show space", controller,
				  [&](auto &to) { tell_spaces(*operations_, controller.c_str(), disk, to); })
			: ask_query<raid_space_t>(from_, CMD_GET_RAID_SPACE, argument_for(disk, controller));
	for (raid_space_t &row : list.rows)
		row.disk = disk;
	return list;
}

const raid_list_t<raid_space_t> &raid_site_t::spaces(const std::string &controller)
{
	lists_t &lists = lists_of(controller);
	return remembered(lists.spaces, lists.controller, [&] {
		const raid_list_t<raid_disk_t> &known = disks(controller);
		std::vector<int> asked;
		for (const raid_disk_t &disk : known.rows)
			asked.push_back(disk.record.nPosition);
		return ask_disks<raid_space_t>("free areas", asked, known,
		                               [&](int disk) { return spaces_of(controller, disk); });
	});
}

// An answer about the disk, not of a run that failed.
static bool is_about_disk(int result)
{
	return result == AAC_OK || result == AAC_BAD_PARAMETER || result == AAC_BAD_DISK_STATUS;
}

raid_list_t<raid_defects_t> raid_site_t::defects_of(const std::string &controller, int disk)
{
	auto list = ask_operation<raid_defects_t>(from_, "disk show defect", controller, [&](auto &to) {
		tell_defects(*operations_, controller.c_str(), disk, to);
	});
	if (list.rows.empty())
		list.rows.push_back({nullptr, disk, -1, -1, list.result});
	const int result = list.rows.front().result;
	if (!list.failed && !is_about_disk(result)) {
		list.failed = true;
		list.result = result;
		list.failure = words_of_result(result);
	}
	return list;
}

// What is no disk has no defects: an enclosure, a tape.
static bool may_have_defects(const raid_disk_t &disk)
{
	enum { OTHER = -1, DISK = 0 }; // as the record has them, one less than they are named
	return disk.record.DeviceType == DISK || disk.record.DeviceType == OTHER;
}

const raid_list_t<raid_defects_t> &raid_site_t::defects(const std::string &controller)
{
	lists_t &lists = lists_of(controller);
	return remembered(lists.defects, lists.controller, [&] {
		if (!operations_)
			return not_told_by_queries<raid_defects_t>();
		const raid_list_t<raid_disk_t> &known = disks(controller);
		std::vector<int> asked;
		for (const raid_disk_t &disk : known.rows) {
			if (may_have_defects(disk))
				asked.push_back(disk.record.nPosition);
		}
		auto list = ask_disks<raid_defects_t>("defects", asked, known,
		                                      [&](int disk) { return defects_of(controller, disk); });
		// Those behind one that hangs.
		for (std::size_t i = list.rows.size(); i < asked.size(); i++)
			list.rows.push_back({nullptr, asked[i], -1, -1, AAC_RUN_FAILED});
		return list;
	});
}
