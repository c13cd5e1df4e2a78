// SPDX-License-Identifier: Apache-2.0
// What a run has to say beside its lists: what failed, and what a list cannot show.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_MESSAGES_H
#define DISKSCOUT_TOOLS_DISKSCOUT_MESSAGES_H

#include <string>
#include <string_view>
#include <vector>

struct kind_t;

// An error ends the run with a status that is not 0; nothing else does.
enum class severity_t { NOTE, WARNING, ERROR };

// Why, as a word for programs. No word is ever given another meaning; new ones may come.
enum class code_t {
	USAGE,
	PLUGIN_NOT_LOADED,
	CAPTURED_HOST_NOT_LOADED,
	FAILED,
	QUERY_FAILED,
	TIMED_OUT,
	LEFT_BEHIND,
	NO_CONTROLLER,
	LIST_CUT,
	NO_SYSFS,
	NO_CLASSIC_NAME,
	NO_SCSI_TABLE,
	NO_IDE_TABLE,
	NO_PERMISSION,
	NOT_OPENED,
	NOT_IN_SCSI_TABLE,
	NOT_IN_IDE_TABLE,
	NOT_IN_BLOCK_TABLE,
	NO_MOUNT_TABLE,
	NOT_AMONG_DISKS,
	NO_MEDIUM,
	PROTECTIVE_ENTRY,
	OUTSIDE_DISK,
	CUT_TEXT,
	PROBLEM_FOUND,
	WARNING_FOUND,
	HELP,
	VERSION
};

// Which of those that share a code.
enum class detail_t {
	NONE,
	// of LIST_CUT: what ends there
	DISKS,
	TABLE_ROWS, // of /proc/partitions and of /proc/scsi/scsi
	DRIVES,
	MOUNTS,
	PARTITIONS,
	RING_OF_TABLES, // whose entries come again until the list is full
	// of NOT_IN_...: the table has it, and as something else than a disk
	OF_OTHER_TYPE
};

struct message_t {
	severity_t severity;
	const kind_t *kind; // that it is about; null: the whole run
	code_t code;
	std::string text; // one sentence, without a full stop at its end
	detail_t detail = detail_t::NONE;
};

using messages_t = std::vector<message_t>;

// As bytes, from a worker to whoever it works for: they are copies of one program.
std::string packed(const messages_t &messages);
messages_t unpacked_messages(std::string_view bytes);

// The words of the document: "error", "list_cut".
std::string_view word_of(severity_t severity);
std::string_view word_of(code_t code);
const std::vector<std::string_view> &code_words();

#endif
