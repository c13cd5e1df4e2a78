// SPDX-License-Identifier: Apache-2.0
// The document of format 2: one object, whatever happens.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_DOCUMENT_H
#define DISKSCOUT_TOOLS_DISKSCOUT_DOCUMENT_H

#include "examination.h"
#include "host_names.h"
#include "json_writer.h"
#include "kinds.h"
#include "messages.h"

#include <optional>
#include <string>

class document_t
{
public:
	explicit document_t(const host_names_t &host);

	// The RAID controller that kinds of one are about; null: there is none.
	void controller(const std::optional<std::string> &name);
	void list(const kind_t &kind, const answer_t &answer);
	// What doctor has found.
	void checks(const told_findings_t &found);
	// The whole text. Nothing may follow.
	std::string end(const messages_t &messages, int exit_status);

private:
	std::string text_;
	json_writer_t to_{text_};
};

#endif
