// SPDX-License-Identifier: Apache-2.0
// Texts and what they mean, many in one file:
//
//   ==== name-of-the-case
//   the text, line by line
//   ==>
//   its meaning, line by line
//
// In both \xHH is a byte and \\ a backslash. A backslash that ends a line stands for its newline: that one is
// not in the text. Blanks at the end of a line are written \x20, so that they show.
#ifndef DISKSCOUT_TESTS_CASES_H
#define DISKSCOUT_TESTS_CASES_H

#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>
#include <vector>

struct Case {
	std::string name;
	std::string text;
	std::string meaning;
};

// For a test's name in a report.
inline void PrintTo(const Case &it, std::ostream *stream)
{
	*stream << it.name;
}

// A line of a case as it stands in the file, without its newline, as the bytes that it means.
inline std::string unescaped_line(const std::string &line)
{
	std::string bytes;
	for (size_t at = 0; at < line.size(); at++) {
		const bool escapes = line[at] == '\\';
		if (escapes && ++at == line.size())
			return bytes;
		if (!escapes || line[at] != 'x') {
			bytes += line[at];
			continue;
		}
		bytes += static_cast<char>(strtoul(line.substr(at + 1, 2).c_str(), nullptr, 16));
		at += 2;
	}
	return bytes + "\n";
}

inline std::vector<Case> read_cases(const std::string &path)
{
	const std::string heading = "==== ";
	std::vector<Case> cases;
	std::string *part = nullptr;
	std::ifstream file(path, std::ios::binary);
	for (std::string line; std::getline(file, line);) {
		if (line.compare(0, heading.size(), heading) == 0) {
			cases.push_back({line.substr(heading.size()), "", ""});
			part = &cases.back().text;
		} else if (cases.empty()) {
			continue; // what the file says about itself
		} else if (line == "==>") {
			part = &cases.back().meaning;
		} else {
			*part += unescaped_line(line);
		}
	}
	EXPECT_FALSE(cases.empty()) << path;
	return cases;
}

// The name as a part of a test's name.
inline std::string as_test_name(std::string name)
{
	for (char &c : name)
		if (c == '-')
			c = '_';
	return name;
}

inline std::string case_test_name(const testing::TestParamInfo<Case> &row)
{
	return as_test_name(row.param.name);
}

#endif
