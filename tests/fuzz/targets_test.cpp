// SPDX-License-Identifier: Apache-2.0
// The fuzzer's targets as ordinary tests: what the fuzzer has found, nasty inputs made by hand, and
// everything that it begins with. Each findings/NAME-*.txt goes through the target NAME, which has to end
// with a code of its own and with sound records.
#include "../../fuzz/targets.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace
{

std::string as_test_name(std::string name)
{
	std::replace(name.begin(), name.end(), '-', '_');
	return name;
}

std::vector<std::string> findings()
{
	std::vector<std::string> names;
	for (const auto &entry : fs::directory_iterator(FINDINGS_DIRECTORY))
		names.push_back(entry.path().filename());
	std::sort(names.begin(), names.end());
	return names;
}

class Finding : public testing::TestWithParam<std::string>
{
};

TEST_P(Finding, IsSurvived)
{
	const Target *target = find_target(GetParam().substr(0, GetParam().find('-')));
	ASSERT_NE(target, nullptr) << "the name begins with no target's";
	EXPECT_EQ(target->check((fs::path(FINDINGS_DIRECTORY) / GetParam()).c_str()), "");
}

INSTANTIATE_TEST_SUITE_P(Findings, Finding, testing::ValuesIn(findings()),
                         [](const testing::TestParamInfo<std::string> &row) {
				 return as_test_name(fs::path(row.param).stem());
			 });

// ---- what the fuzzer begins with ----

class Seeds : public testing::TestWithParam<Target>
{
};

TEST_P(Seeds, AreSurvived)
{
	int seeds = 0;
	for (const auto &entry : fs::directory_iterator(fs::path(SEEDS_DIRECTORY) / GetParam().name)) {
		EXPECT_EQ(GetParam().check(entry.path().c_str()), "") << entry.path();
		seeds++;
	}
	EXPECT_GT(seeds, 0);
}

INSTANTIATE_TEST_SUITE_P(Targets, Seeds, testing::ValuesIn(TARGETS),
                         [](const testing::TestParamInfo<Target> &row) {
				 return std::string(row.param.name);
			 });

} // namespace
