// SPDX-License-Identifier: Apache-2.0
// What a run has to say beside its lists.
#include "messages.h"

#include <algorithm>
#include <cstring>

struct code_word_t {
	code_t code;
	std::string_view word;
};

static constexpr code_word_t CODES[] = {
	{code_t::USAGE, "usage"},
	{code_t::PLUGIN_NOT_LOADED, "plugin_not_loaded"},
	{code_t::CAPTURED_HOST_NOT_LOADED, "captured_host_not_loaded"},
	{code_t::FAILED, "failed"},
	{code_t::QUERY_FAILED, "query_failed"},
	{code_t::TIMED_OUT, "timed_out"},
	{code_t::LEFT_BEHIND, "left_behind"},
	{code_t::NO_CONTROLLER, "no_controller"},
	{code_t::LIST_CUT, "list_cut"},
	{code_t::NO_SYSFS, "no_sysfs"},
	{code_t::NO_CLASSIC_NAME, "no_classic_name"},
	{code_t::NO_SCSI_TABLE, "no_scsi_table"},
	{code_t::NO_IDE_TABLE, "no_ide_table"},
	{code_t::NO_PERMISSION, "no_permission"},
	{code_t::NOT_OPENED, "not_opened"},
	{code_t::NOT_IN_SCSI_TABLE, "not_in_scsi_table"},
	{code_t::NOT_IN_IDE_TABLE, "not_in_ide_table"},
	{code_t::NOT_IN_BLOCK_TABLE, "not_in_block_table"},
	{code_t::NO_MOUNT_TABLE, "no_mount_table"},
	{code_t::NOT_AMONG_DISKS, "not_among_disks"},
	{code_t::NO_MEDIUM, "no_medium"},
	{code_t::PROTECTIVE_ENTRY, "protective_entry"},
	{code_t::OUTSIDE_DISK, "outside_disk"},
	{code_t::CUT_TEXT, "cut_text"},
	{code_t::PROBLEM_FOUND, "problem_found"},
	{code_t::WARNING_FOUND, "warning_found"},
	{code_t::HELP, "help"},
	{code_t::VERSION, "version"},
};

// In front of each text.
struct packed_message_t {
	severity_t severity;
	const kind_t *kind;
	code_t code;
	detail_t detail;
	std::size_t length;
};

std::string packed(const messages_t &messages)
{
	std::string bytes;
	for (const message_t &message : messages) {
		const packed_message_t head = {message.severity, message.kind, message.code, message.detail,
		                               message.text.size()};
		bytes.append(reinterpret_cast<const char *>(&head), sizeof head);
		bytes += message.text;
	}
	return bytes;
}

messages_t unpacked_messages(std::string_view bytes)
{
	messages_t messages;
	while (bytes.size() >= sizeof(packed_message_t)) {
		packed_message_t head;
		memcpy(&head, bytes.data(), sizeof head);
		bytes.remove_prefix(sizeof head);
		messages.push_back({head.severity, head.kind, head.code,
		                    std::string(bytes.substr(0, head.length)), head.detail});
		bytes.remove_prefix(std::min(head.length, bytes.size()));
	}
	return messages;
}

std::string_view word_of(severity_t severity)
{
	static constexpr std::string_view WORDS[] = {"note", "warning", "error"};
	return WORDS[static_cast<std::size_t>(severity)];
}

std::string_view word_of(code_t code)
{
	for (const code_word_t &row : CODES) {
		if (row.code == code)
			return row.word;
	}
	return "failed";
}

const std::vector<std::string_view> &code_words()
{
	static const auto WORDS = [] {
		std::vector<std::string_view> words;
		for (const code_word_t &row : CODES)
			words.push_back(row.word);
		return words;
	}();
	return WORDS;
}
