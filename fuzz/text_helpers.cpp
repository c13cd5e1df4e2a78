// SPDX-License-Identifier: Apache-2.0
// The text helpers against the same done with strings that grow by themselves. Buffers are as large as the
// text at its longest and not a byte more.
#include "targets.h"

#include "hwraid/aacraid/aac_public.h"

#include <algorithm>
#include <string.h>

namespace
{

struct Case {
	std::string from;
	std::string to;
	std::string text;
};

std::string take_line(std::string *text)
{
	const size_t end = text->find('\n');
	std::string line = text->substr(0, end);
	text->erase(0, end == std::string::npos ? end : end + 1);
	return line;
}

Case read_case(const char *path)
{
	char *content = Get_Content_Of_The_File(path);
	Case it;
	it.text = content ? content : "";
	delete[] content;
	it.from = take_line(&it.text);
	it.to = take_line(&it.text);
	return it;
}

std::string replaced(const Case &it)
{
	std::string text = it.text;
	if (it.from.empty())
		return text;
	for (size_t at = text.find(it.from); at != std::string::npos;
	     at = text.find(it.from, at + it.to.size()))
		text.replace(at, it.from.size(), it.to);
	return text;
}

bool replaces(const Case &it)
{
	const std::string expected = replaced(it);
	std::vector<char> buffer(std::max(it.text.size(), expected.size()) + 1);
	memcpy(buffer.data(), it.text.c_str(), it.text.size() + 1);
	return ReplaceSubString(buffer.data(), it.from.c_str(), it.to.c_str()) == expected;
}

std::vector<char> exactly(const std::string &text)
{
	const char *begin = text.c_str();
	return {begin, begin + text.size() + 1};
}

bool cuts(const Case &it, bool all)
{
	size_t cut = it.text.compare(0, it.from.size(), it.from) == 0 ? it.from.size() : 0;
	while (cut < it.text.size() && it.to.find(it.text[cut]) != std::string::npos) {
		cut++;
		if (!all)
			break;
	}
	std::vector<char> buffer = exactly(it.text);
	CutOffHeaderString(buffer.data(), it.from.c_str(), it.to.c_str(), all);
	return it.text.substr(cut) == buffer.data();
}

bool strips_header(const Case &it)
{
	const size_t kept = std::min(it.text.find_first_not_of(it.to), it.text.size());
	std::vector<char> buffer = exactly(it.text);
	const int result = DeleteHeaderSymbols(buffer.data(), it.to.c_str());
	return result == (kept == 0 ? -1 : 0) && it.text.substr(kept) == buffer.data();
}

bool strips_tail(const Case &it)
{
	std::vector<char> buffer = exactly(it.text);
	if (DeleteTailSpaceAndReturn(buffer.data()) != 0)
		return false;
	const std::string rest = buffer.data();
	return it.text.compare(0, rest.size(), rest) == 0 &&
	       it.text.find_first_not_of(" \t\r\n", rest.size()) == std::string::npos;
}

// Every piece stands in the text, cut to the buffer at most.
bool finds_pieces(const Case &it, char separator)
{
	const std::vector<char> buffer = exactly(it.text);
	for (int i = 0; i < 12; i++) {
		const std::string piece = TheNthSubString(buffer.data(), 1 + i / 3, separator, 1 + i % 3);
		if (piece.size() > 1023 || it.text.find(piece) == std::string::npos)
			return false;
	}
	return true;
}

bool knows_sets(const Case &it)
{
	const bool only = it.text.find_first_not_of(it.to) == std::string::npos;
	const bool header = it.text.compare(0, it.from.size(), it.from) == 0;
	return (CurrentLineHasOnlyIncludeSymbols(it.text.c_str(), it.to.c_str()) != 0) == only &&
	       (Including(it.text.c_str(), it.from.c_str()) != 0) == header;
}

bool finds_errors(const Case &it)
{
	const std::vector<char> buffer = exactly(it.text);
	const int code = CheckIfExistErrors(buffer.data());
	const bool error = it.text.find("Command Error") != std::string::npos;
	return code == 0 || (error && (code == -100 || code == -200 || code == -300));
}

} // namespace

std::string check_text(const char *path)
{
	const Case it = read_case(path);
	const struct {
		bool right;
		const char *helper;
	} rows[] = {
		{replaces(it), "ReplaceSubString"},
		{cuts(it, true) && cuts(it, false), "CutOffHeaderString"},
		{strips_header(it), "DeleteHeaderSymbols"},
		{strips_tail(it), "DeleteTailSpaceAndReturn"},
		{finds_pieces(it, '\n') && finds_pieces(it, ' '), "TheNthSubString"},
		{knows_sets(it), "CurrentLineHasOnlyIncludeSymbols or Including"},
		{finds_errors(it), "CheckIfExistErrors"},
	};
	for (const auto &row : rows)
		if (!row.right)
			return row.helper;
	return "";
}
