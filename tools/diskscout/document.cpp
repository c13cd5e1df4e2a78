// SPDX-License-Identifier: Apache-2.0
// The document of format 2.
#include "document.h"

#include <ctime>

static std::string now()
{
	const std::time_t seconds = std::time(nullptr);
	std::tm parts{};
	char text[64];
	if (!gmtime_r(&seconds, &parts))
		return "1970-01-01T00:00:00Z";
	const std::size_t length = strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
	return {text, length};
}

static void put_optional(const std::optional<std::string> &text, sink_t &to)
{
	if (text)
		to.text(*text);
	else
		to.absent();
}

document_t::document_t(const host_names_t &host)
{
	to_.begin_object();
	to_.key("format");
	to_.number(2);
	to_.key("generator");
	to_.begin_object();
	to_.key("name");
	to_.text("diskscout");
	to_.key("version");
	to_.text(DISKSCOUT_VERSION);
	to_.end_object();
	to_.key("host");
	to_.begin_object();
	to_.key("name");
	put_optional(host.name, to_);
	to_.key("kernel");
	put_optional(host.kernel, to_);
	to_.end_object();
	to_.key("time");
	to_.text(now());
}

void document_t::controller(const std::optional<std::string> &name)
{
	to_.key("controller");
	put_optional(name, to_);
}

// That nothing was found would be a false answer of a query that failed.
void document_t::list(const kind_t &kind, const answer_t &answer)
{
	// Far less than it takes to make room for the text again and again.
	constexpr std::size_t ROOM = 1024;
	text_.reserve(text_.size() + answer.rows.size() * ROOM);
	to_.key(kind.word);
	if (answer.failed && answer.rows.empty()) {
		to_.absent();
		return;
	}
	to_.begin_list();
	for (const row_t &row : answer.rows)
		put_object(kind.fields, NEW, row, to_);
	to_.end_list();
}

static void put_if_any(const std::string &text, sink_t &to)
{
	if (text.empty())
		to.absent();
	else
		to.text(text);
}

void document_t::checks(const told_findings_t &found)
{
	to_.key("checks");
	to_.begin_list();
	for (const told_finding_t &f : found) {
		to_.begin_object();
		to_.key("check");
		to_.text(f.check->word);
		to_.key("question");
		to_.text(f.check->question);
		to_.key("verdict");
		to_.text(word_of(f.finding.verdict));
		to_.key("text");
		put_if_any(f.finding.text, to_);
		to_.key("advice");
		put_if_any(f.finding.advice, to_);
		to_.end_object();
	}
	to_.end_list();
}

static void put_message(const message_t &message, sink_t &to)
{
	to.begin_object();
	to.key("severity");
	to.text(word_of(message.severity));
	to.key("kind");
	if (message.kind)
		to.text(message.kind->word);
	else
		to.absent();
	to.key("code");
	to.text(word_of(message.code));
	to.key("text");
	to.text(message.text);
	to.end_object();
}

std::string document_t::end(const messages_t &messages, int exit_status)
{
	to_.key("messages");
	to_.begin_list();
	for (const message_t &message : messages)
		put_message(message, to_);
	to_.end_list();
	to_.key("exit_status");
	to_.number(exit_status);
	to_.end_object();
	return std::move(text_ += '\n');
}
