// SPDX-License-Identifier: Apache-2.0
// Devices that lack something: they come or go, or their kernel does not know it.
#include "host.h"
#include "queries.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

const std::string ONE = "devices/virtual/block/loop1";
const std::string OTHER = "devices/virtual/block/loop2";
const std::vector<std::string> ATTRIBUTES = {"size",
                                             "ro",
                                             "removable",
                                             "queue/logical_block_size",
                                             "queue/physical_block_size",
                                             "queue/rotational"};

class Partial : public BlockHost, public ::testing::WithParamInterface<std::string>
{
protected:
	Partial()
	{
		device(ONE, "7:1", 100);
		device(OTHER, "7:2", 100);
	}

	void lose(const std::string &path, const std::string &attribute)
	{
		std::filesystem::remove(host() / "sys" / path / attribute);
	}
};

TEST_P(Partial, WhatOthersHaveAndItHasNotSaysThatItComesOrGoes)
{
	lose(ONE, GetParam());
	show();
	const Answer<block_device> devices(list_devices);
	ASSERT_EQ(devices.count, 1);
	EXPECT_STREQ(devices.first()->name, "loop2");
}

TEST_P(Partial, WhatNoneHasIsAbsent)
{
	lose(ONE, GetParam());
	lose(OTHER, GetParam());
	show();
	const Answer<block_device> devices(list_devices);
	ASSERT_EQ(devices.count, 2);
	const block_device &one = devices.named("loop1");
	const long long values[] = {one.size,           one.read_only,       one.removable,
	                            one.logical_sector, one.physical_sector, one.rotational};
	const long long whole[] = {51200, 0, 0, 512, 512, 0};
	for (size_t i = 0; i < ATTRIBUTES.size(); i++)
		EXPECT_EQ(values[i], ATTRIBUTES[i] == GetParam() ? -1LL : whole[i]) << ATTRIBUTES[i];
}

INSTANTIATE_TEST_SUITE_P(Attributes, Partial, ::testing::ValuesIn(ATTRIBUTES), [](const auto &row) {
	std::string name = row.param;
	for (char &c : name)
		c = c == '/' ? '_' : c;
	return name;
});

class Without : public BlockHost
{
};

TEST_F(Without, AUeventNothingIsKnown)
{
	device(ONE, "7:1", 100);
	std::filesystem::remove(host() / "sys" / ONE / "uevent");
	show();
	const Answer<block_device> devices(list_devices);
	EXPECT_EQ(devices.result, 0);
	EXPECT_EQ(devices.count, 0);
}

TEST_F(Without, ADiscADriveHasNoSize)
{
	device("devices/pci0000:00/0000:00:1f.2/ata3/host2/target2:0:0/2:0:0:0/block/sr0", "11:0", 0x1fffff);
	device("devices/pci0000:00/0000:00:1f.2/ata4/host3/target3:0:0/3:0:0:0/block/sr1", "11:1", 1332);
	show();
	const Answer<block_device> devices(list_devices);
	EXPECT_EQ(devices.named("sr0").size, 0);
	EXPECT_EQ(devices.named("sr1").size, 1332 * 512);
}

} // namespace
