// SPDX-License-Identifier: Apache-2.0
// Creating containers on the simulated controller, and what it refuses: the codes, the state before and
// after.
#include "simulated.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_raid.h"

namespace
{

TEST_P(Simulator, CreatesStripes)
{
	EXPECT_EQ(Aac_Create_Raid0(AAC0, "data", 32, disk_at(0, 2), 1024, disk_at(0, 3), -1), 0);
	state_t state;
	state.containers += container(4, "Stripe", 2097152, 32, "/dev/sdf", "data",
	                              piece("0:02:0", 2097216, 1048576) + piece("0:03:0", 2097216, 1048576));
	expect_state(state);
	EXPECT_EQ(containers(), "8\n" + SYSTEM_ROW + VOLUME_ROW + BIG_ROWS + FIVE_ROW +
	                                "4|2|0:2:0,0:3:0|0|2048|32|3|-1|data\n" + QUARTER_ROW);
	// The second disk is looked for on the first one's channel, further ones are not.
	EXPECT_EQ(Aac_Create_Raid0(AAC0, "", 16, disk_at(1, 3), 100, disk_at(0, 2), disk_at(0, 4),
	                           disk_at(1, 10), -1),
	          0);
	state.containers += container(5, "Stripe", 409600, 16, "/dev/sdg", "",
	                              piece("1:03:0", 64, 102400) + piece("1:02:0", 64, 102400) +
	                                      piece("0:04:0", 64, 102400) + piece("1:10:0", 1572928, 102400));
	expect_state(state);
}

TEST_P(Simulator, CreatesAStripeThatLeavesTheChoiceToTheTool)
{
	EXPECT_EQ(Aac_Create_Raid0(AAC0, nullptr, -1, disk_at(1, 3), -1, disk_at(1, 2), -1), 0);
	state_t state;
	state.containers += container(4, "Stripe", 30433280, 64, "/dev/sdf", "",
	                              piece("1:03:0", 64, 15216640) + piece("1:02:0", 1560640, 15216640));
	expect_state(state);
}

TEST_P(Simulator, CreatesMirrors)
{
	EXPECT_EQ(Aac_Create_Raid1(AAC0, "0123456789abcdefXYZ0", 1, disk_at(0, 2), 1024, disk_at(1, 3)), 0);
	state_t state;
	state.containers += container(4, "Mirror", 1048576, 0, "/dev/sdf", "0123456789abcdef",
	                              piece("0:02:0", 2097216, 1048576) + piece("1:03:0", 64, 1048576));
	expect_state(state);
	// Without quick initialisation a check begins.
	EXPECT_EQ(Aac_Create_Raid1(AAC0, "two words", 0, disk_at(0, 2), 1, disk_at(1, 3)), 0);
	state.containers += container(5, "Mirror", 1024, 0, "/dev/sdg", "two words",
	                              piece("0:02:0", 3145792, 1024) + piece("1:03:0", 1048640, 1024));
	state.tasks += "task id=107 function=Bld/Vfy done=200 step=200 container=5 state=RUN\n";
	state.next_task = 108;
	expect_state(state);
	EXPECT_EQ(tasks(), "3\n105|5|999|0|3\n106|3|450|25|3\n107|9|200|5|2\n");
	EXPECT_EQ(containers(), "9\n" + SYSTEM_ROW + VOLUME_ROW + BIG_ROWS + FIVE_ROW +
	                                "4|2|0:2:0,1:3:0|1|1024|0|3|-1|0123456789abcdef\n"
	                                "5|2|0:2:0,1:3:0|1|1|0|3|-1|two words\n" +
	                                QUARTER_ROW);
}

TEST_P(Simulator, CreatesRaid5)
{
	EXPECT_EQ(
		Aac_Create_Raid5(AAC0, "three", 0, 16, disk_at(0, 2), 512, disk_at(0, 3), disk_at(1, 3), -1),
		0);
	state_t state;
	state.containers += container(4, "RAID-5", 1048576, 16, "/dev/sdf", "three",
	                              piece("0:02:0", 2097216, 524288) + piece("0:03:0", 2097216, 524288) +
	                                      piece("1:03:0", 64, 524288));
	const std::string check = "task id=107 function=Bld/Vfy done=200 step=200 container=4 state=RUN\n";
	state.tasks += check;
	state.next_task = 108;
	expect_state(state);
	// Between the third disk and the fourth stands no blank.
	EXPECT_EQ(Aac_Create_Raid5(AAC0, nullptr, 1, 0, disk_at(0, 4), 512, disk_at(1, 10), disk_at(1, 2),
	                           disk_at(0, 2), disk_at(0, 3), -1),
	          0);
	state.containers += container(5, "RAID-5", 2097152, 64, "/dev/sdg", "",
	                              piece("0:04:0", 64, 524288) + piece("1:10:0", 1572928, 524288) +
	                                      piece("1:02:0", 64, 524288) + piece("0:02:0", 2621504, 524288) +
	                                      piece("0:03:0", 2621504, 524288));
	state.tasks.replace(state.tasks.find("done=200"), 8, "done=400");
	expect_state(state);
}

std::string as_member(int number, int parent, const std::string &pieces)
{
	return "container number=" + std::to_string(number) +
	       " type=Mirror size_kb=1024 stripe_kb=0 usage=None device=\"\" label=\"\" parent=" +
	       std::to_string(parent) + " data=no\n" + pieces;
}

TEST_P(Simulator, CreatesAStripeOfMirrors)
{
	state_t state;
	state.containers += pair_of(4, 5);
	use_state(state);
	EXPECT_EQ(Aac_Create_Raid10(AAC0, "ten", 16, 5, 4, -1), 0);
	// The members move to the numbers from 24 on, and give up their own and their devices.
	state.containers = ALL_CONTAINERS +
	                   as_member(27, 4, piece("0:02:0", 2097216, 1024) + piece("0:03:0", 2097216, 1024)) +
	                   as_member(26, 4, piece("1:03:0", 64, 1024) + piece("1:02:0", 64, 1024)) +
	                   container(4, "Stripe", 2048, 16, "/dev/sdf", "ten", "");
	expect_state(state);
	EXPECT_EQ(containers(), "10\n" + SYSTEM_ROW + VOLUME_ROW + BIG_ROWS + FIVE_ROW +
	                                "4|2|26,27|3|2|16|3|-1|ten\n"
	                                "26|2|1:3:0,1:2:0|1|1|0|3|-1|\n"
	                                "27|2|0:2:0,0:3:0|1|1|0|3|-1|\n" +
	                                QUARTER_ROW);
}

// ---- what the tool refuses ----

struct refusal_t {
	const char *what;
	int code;
	int (*run)();
};

const refusal_t REFUSALS[] = {
	{"a stripe of 48 KB", -3,
         [] { return Aac_Create_Raid0(AAC0, "", 48, disk_at(0, 2), 1, disk_at(0, 3), -1); }},
	{"a RAID-5 set with a stripe of 128 KB", -3,
         [] {
		 return Aac_Create_Raid5(AAC0, "", 1, 128, disk_at(0, 2), 1, disk_at(0, 3), disk_at(1, 3),
	                                 -1);
	 }},
	{"a stripe of mirrors with a stripe of 1 KB", -3,
         [] { return Aac_Create_Raid10(AAC0, "", 1, 4, 5, -1); }},
	{"no such container", -5, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 7, -1); }},
	{"no such further container", -5, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 5, 7, -1); }},
	{"mirrors of 1 MB and 10 GB", -20, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 0, -1); }},
	{"a stripe of a volume", -300, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 1, -1); }},
	{"a stripe of a member", -300, [] { return Aac_Create_Raid10(AAC0, "", 0, 24, 25, -1); }},
	{"a mirror named twice", -300, [] { return Aac_Create_Raid10(AAC0, "", 0, 4, 4, -1); }},
	{"no such channel", -30,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(7, 2), 1, disk_at(0, 3)); }},
	{"no such device", -30,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 9)); }},
	{"no such further device", -30,
         [] { return Aac_Create_Raid0(AAC0, "", 0, disk_at(0, 2), 1, disk_at(0, 3), disk_at(0, 9), -1); }},
	{"more than a disk has", -30,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 16384, disk_at(1, 3)); }},
	{"a fifth piece on a disk", -70,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 7)); }},
	{"a disk that is not initialised", -300,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 5)); }},
	{"a processor", -300, [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 6)); }},
	{"a disk named twice", -300,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), 1, disk_at(0, 2)); }},
	{"a negative size", -300,
         [] { return Aac_Create_Raid1(AAC0, "", 1, disk_at(0, 2), -5, disk_at(0, 3)); }},
	{"a quotation mark in the label", -300,
         [] { return Aac_Create_Raid1(AAC0, "a\"b", 1, disk_at(0, 2), 1, disk_at(0, 3)); }},
	{"a hot spare of no container", -5, [] { return Aac_Container_Set_Failover(AAC0, 7, SPARE); }},
	{"a hot spare on no channel", -2, [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(7, 0)); }},
	{"no device for a hot spare", -2, [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(0, 9)); }},
	{"a hot spare of a volume", -300, [] { return Aac_Container_Set_Failover(AAC0, 1, SPARE); }},
	{"a hot spare that is not initialised", -300,
         [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(0, 5)); }},
	{"a hot spare that is a member", -300,
         [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(1, 2)); }},
	{"a hot spare that is no disk", -300,
         [] { return Aac_Container_Set_Failover(AAC0, 3, disk_at(0, 6)); }},
	{"a hot spare set twice", -300, [] { return Aac_Container_Set_Failover(AAC0, 0, SPARE); }},
	{"to take the hot spare of no container", -5,
         [] { return Aac_Container_Remove_Failover(AAC0, 7, SPARE); }},
	{"to take a hot spare on no channel", -2,
         [] { return Aac_Container_Remove_Failover(AAC0, 0, disk_at(7, 0)); }},
	{"to take no device", -2, [] { return Aac_Container_Remove_Failover(AAC0, 0, disk_at(0, 9)); }},
	{"to take a disk that is no hot spare", -90,
         [] { return Aac_Container_Remove_Failover(AAC0, 0, disk_at(1, 3)); }},
};

TEST_P(Simulator, RefusalsHaveTheirCodesAndChangeNothing)
{
	state_t state;
	state.containers += pair_of(4, 5);
	use_state(state);
	for (const refusal_t &refusal : REFUSALS) {
		EXPECT_EQ(refusal.run(), refusal.code) << refusal.what;
		expect_state(state);
	}
}

} // namespace
