// SPDX-License-Identifier: Apache-2.0
// Sites that are sick in one way each, and some that are well: every directory below sites/ is one.
#include "doctor_site.h"

#include "plugin.h"
#include "process_tree.h"
#include "tool_look.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace
{

class Site : public testing::TestWithParam<std::string>
{
};

TEST_P(Site, has_its_cause)
{
	SiteDir site(GetParam());
	ASSERT_TRUE(site.prepare());
	const plugin_t plugin(DISKSCOUT_TEST_PLUGIN);
	plugin.set_configuration(site.root_ / "raid.cfg");
	const std::string expected = text_in(SITES / GetParam() / "expected");
	// Time enough on a busy machine for those that need not wait for its end.
	const auto limit = std::chrono::seconds(expected.find("timed out") == std::string::npos ? 20 : 1);
	const auto begin = std::chrono::steady_clock::now();
	{
		enquiry_t asked(&plugin, nullptr, "", limit);
		patient_t patient = {asked, {}, {}, true, nullptr};
		const tool_look_t look = look_at_tool(patient);
		patient.tool = &look;
		EXPECT_EQ(lines_of(SITE_CHECKS, patient) + lines_of(TOOL_CHECKS, patient),
		          site.here(expected));
		EXPECT_TRUE(asked.left_behind().empty());
	}
	EXPECT_LT(std::chrono::steady_clock::now() - begin, limit + std::chrono::seconds(7));
	EXPECT_TRUE(fs::is_empty(site.root_ / "tmp"));
	EXPECT_TRUE(descendants().empty());
}

std::vector<std::string> sites()
{
	std::vector<std::string> names;
	for (const auto &entry : fs::directory_iterator(SITES)) {
		if (entry.path().filename() != "common" && entry.is_directory())
			names.push_back(entry.path().filename());
	}
	std::sort(names.begin(), names.end());
	return names;
}

INSTANTIATE_TEST_SUITE_P(Doctor, Site, testing::ValuesIn(sites()), [](const auto &given) {
	return replaced(replaced(given.param, "-", "_"), "=", "_");
});

} // namespace
