// The parts of the console that no session reaches: what no menu shows, limits that leave no number.
#include "hwraid/aac_mycli/aac_mycli.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

template <class Function> std::string printed(Function run)
{
	testing::internal::CaptureStderr();
	run();
	return testing::internal::GetCapturedStderr();
}

TEST(Console, MainMenuLine)
{
	EXPECT_EQ(printed(printf_info), "1 - Controller  2 - Disk  3 - Container  4 - Raid  5 - task  6 "
	                                "Server Management Interface -- "
	                                "GetIntemInfo 0 - Quit\n");
}

TEST(Console, BoxedMenu)
{
	EXPECT_EQ(printed(print_controller), "------------------------------\n"
	                                     "|  1 ---- get controller list|\n"
	                                     "|  2 ---- get controller name|\n"
	                                     "|  0 ---- Quit controller!   |\n"
	                                     "------------------------------\n");
}

TEST(Console, LimitsThatLeaveNoNumberAskNobody)
{
	EXPECT_EQ(printed([] { EXPECT_EQ(InputProcess(0, -1, "Prompt", "Again"), -1); }), "");
	EXPECT_EQ(printed([] { EXPECT_EQ(InputProcess(5, 4, "Prompt", "Again"), -1); }), "");
}

} // namespace
