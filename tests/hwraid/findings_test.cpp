// Answers that no tool gives: what the fuzzer has found, and nasty ones made by hand. Each
// findings/NAME-*.txt goes through the parser NAME, which has to end with a code of its own and with sound
// records.
#include "../../fuzz/parsers.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace
{

std::vector<std::string> findings()
{
	std::vector<std::string> names;
	for (const auto &entry : fs::directory_iterator(HWRAID_DIRECTORY "/findings"))
		names.push_back(entry.path().filename());
	std::sort(names.begin(), names.end());
	return names;
}

class Finding : public testing::TestWithParam<std::string>
{
};

TEST_P(Finding, IsSurvived)
{
	const Parser *parser = find_parser(GetParam().substr(0, GetParam().find('-')));
	ASSERT_NE(parser, nullptr) << "the name begins with no parser's";
	EXPECT_EQ(parser->check((fs::path(HWRAID_DIRECTORY "/findings") / GetParam()).c_str()), "");
}

INSTANTIATE_TEST_SUITE_P(Findings, Finding, testing::ValuesIn(findings()),
                         [](const testing::TestParamInfo<std::string> &row) {
				 std::string name = fs::path(row.param).stem();
				 std::replace(name.begin(), name.end(), '-', '_');
				 return name;
			 });

} // namespace
