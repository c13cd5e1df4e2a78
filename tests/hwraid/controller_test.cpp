// SPDX-License-Identifier: Apache-2.0
// Controller listings: each case of answers/controllers.cases is an answer of the tool and what it means: a
// line with the parser's result, then a line a controller, its fields separated by '|'.
#include "../cases.h"
#include "site.h"

#include "diskscout.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/hsa_20_need.h"

namespace fs = std::filesystem;

namespace
{

std::vector<Case> listings()
{
	return read_cases(HWRAID_DIRECTORY "/answers/controllers.cases");
}

std::string described(int result, const aac_controller *head)
{
	std::string text = "result " + std::to_string(result) + "\n";
	for (; head; head = head->next)
		text += std::to_string(head->ControllerID) + "|" + head->Adapter_Name + "|" +
		        head->Adapter_Type + "|" + std::to_string(head->Availability) + "|" +
		        std::to_string(head->Clustering) + "\n";
	return text;
}

class Listing : public SiteTest, public testing::WithParamInterface<Case>
{
};

TEST_P(Listing, MeansWhatIsWrittenBesideIt)
{
	const fs::path path = site_ / "listing";
	write_file(path, GetParam().text);
	aac_controller *head = nullptr;
	const int result = AnalyzeControllerFile(path.c_str(), &head);
	EXPECT_EQ(described(result, head), GetParam().meaning);
	Aac_Clear_Controller_List(head);
}

INSTANTIATE_TEST_SUITE_P(Controllers, Listing, testing::ValuesIn(listings()), case_test_name);

TEST(ControllerFile, ThatIsMissingFails)
{
	aac_controller *head = nullptr;
	EXPECT_EQ(AnalyzeControllerFile("/no/such/file", &head), -1);
	EXPECT_EQ(head, nullptr);
}

class ControllerTest : public SiteTest
{
protected:
	void listing(const std::string &name)
	{
		for (const Case &row : listings())
			if (row.name == name)
				return answer(row.text);
		FAIL() << "no listing " << name;
	}
};

TEST_F(ControllerTest, NameByPosition)
{
	listing("two");
	char name[32];
	const struct {
		int position;
		int result;
		const char *name;
	} rows[] = {{0, 0, "aac0"}, {-5, 0, "aac0"}, {1, 0, "aac1"}, {2, -1, ""}, {3, -1, ""}};
	for (const auto &row : rows) {
		memset(name, 'x', sizeof name);
		EXPECT_EQ(Aac_Get_Controller_Name(name, row.position), row.result);
		EXPECT_STREQ(name, row.name);
	}
	listing("none");
	EXPECT_EQ(Aac_Get_Controller_Name(name, 0), -1);
	listing("error-busy");
	EXPECT_EQ(Aac_Get_Controller_Name(name, 0), -1);
	EXPECT_STREQ(name, "");
}

// The provider, asked through the boundary.
class ControllerQuery : public ControllerTest
{
protected:
	int get() { return ask(CMD_GET_CONTROLLERS); }
	int ask(UINT code)
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		return GetItemInfo(&cmd, &head, &count);
	}
	int release()
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = CMD_FREE_CONTROLLERS;
		return SetItemInfo(&cmd, &head);
	}
	void *head = nullptr;
	int count = 4711;
};

TEST_F(ControllerQuery, HandsOutTheRecords)
{
	listing("two");
	ASSERT_EQ(get(), 0);
	EXPECT_EQ(count, 2);
	EXPECT_EQ(described(0, static_cast<aac_controller *>(head)),
	          "result 0\n0|aac0|EXAMPLE 2200S|3|0\n1|aac1|EXAMPLE 5400S|2|1\n");
	EXPECT_EQ(memory_counter_hwraid, 0);
	EXPECT_EQ(release(), 0);
	EXPECT_EQ(head, nullptr);
	EXPECT_EQ(release(), 0) << "an empty list";
}

TEST_F(ControllerQuery, ReleasesTheListPassedInFirst)
{
	listing("two");
	ASSERT_EQ(get(), 0);
	listing("one");
	ASSERT_EQ(get(), 0);
	EXPECT_EQ(count, 1);
	listing("error-busy");
	EXPECT_EQ(get(), -1);
	EXPECT_EQ(count, 0);
	EXPECT_EQ(head, nullptr);
}

TEST_F(ControllerQuery, NoControllersAreNoFailure)
{
	listing("none");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(count, 0);
	EXPECT_EQ(head, nullptr);
}

TEST_F(ControllerQuery, ProviderTouchesNothingForCodesThatAreNotItsOwn)
{
	IPMICOMMAND cmd = {};
	cmd.nCommand = 122100;
	char untouched;
	head = &untouched;
	EXPECT_EQ(HWRAID__GetItemInfo(&cmd, &head, &count), 0);
	EXPECT_EQ(count, 0);
	EXPECT_EQ(head, &untouched);
}

} // namespace
