// SPDX-License-Identifier: Apache-2.0
// Which devices the running system stands on, through partitions, arrays, mappings and file systems of
// several devices.
#include "host.h"
#include "queries.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

class Uses : public BlockHost
{
protected:
	Uses()
	{
		const std::string pci = "devices/pci0000:00/0000:00:1f.2/";
		for (const char letter : {'a', 'b'}) {
			const std::string unit =
				std::string(letter == 'a' ? "0:0:0:0" : "1:0:0:0") + "/block/sd" + letter;
			const std::string disk =
				pci + "ata" + (letter == 'a' ? "1" : "2") + "/host0/target0:0:0/" + unit;
			const std::string minor = letter == 'a' ? "8:0" : "8:16";
			device(disk, minor, 1000000);
			device(disk + "/sd" + letter + "1", letter == 'a' ? "8:1" : "8:17", 500000,
			       "partition", "PARTN=1\n");
			device(disk + "/sd" + letter + "2", letter == 'a' ? "8:2" : "8:18", 400000,
			       "partition", "PARTN=2\n");
		}
		on("md0", "9:0", {"sda1", "sdb1"});
		on("dm-0", "253:0", {"md0"});
		on("dm-1", "253:1", {"dm-0"});
		on("dm-2", "253:2", {"dm-0"});
	}

	// A virtual device that is made of others.
	void on(const std::string &name, const std::string &number, const std::vector<std::string> &slaves)
	{
		device("devices/virtual/block/" + name, number, 100);
		if (name.rfind("dm-", 0) == 0)
			put("sys/devices/virtual/block/" + name + "/dm/name", "mapping\n");
		for (const std::string &slave : slaves)
			link("sys/devices/virtual/block/" + name + "/slaves/" + slave,
			     "../../../../somewhere/" + slave);
	}

	void mounts(const std::string &text) { put("proc/self/mountinfo", text); }
	void swaps(const std::string &text)
	{
		put("proc/swaps", "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n" + text);
	}

	enum use_t { ROOT, BOOT, SWAP };
	// The devices whose flag is set, in their order; "?" for one that has none.
	std::string with(use_t use)
	{
		show();
		const Answer<block_device> devices(list_devices);
		EXPECT_EQ(devices.result, 0);
		std::string names;
		for (const block_device *at = devices.first(); at; at = at->next) {
			const int flags[] = {at->under_root, at->under_boot, at->under_swap};
			if (flags[use] != 0)
				names += (names.empty() ? "" : " ") + std::string(at->name) +
				         (flags[use] < 0 ? "?" : "");
		}
		return names;
	}
};

TEST_F(Uses, RootThroughAMappingOnAMappingOnAnArrayOnPartitions)
{
	mounts("20 1 253:1 / / rw - ext4 /dev/mapper/vg-root rw\n");
	swaps("");
	EXPECT_EQ(with(ROOT), "dm-0 dm-1 md0 sda sda1 sdb sdb1");
	EXPECT_EQ(with(BOOT), "");
	EXPECT_EQ(with(SWAP), "");
}

TEST_F(Uses, BootOnAPartitionAndSwapOnAMapping)
{
	mounts("20 1 253:1 / / rw - ext4 /dev/mapper/vg-root rw\n21 20 8:2 / /boot rw - ext4 /dev/sda2 rw\n");
	swaps("/dev/dm-2                               partition\t1000\t0\t-2\n");
	EXPECT_EQ(with(BOOT), "sda sda2");
	EXPECT_EQ(with(SWAP), "dm-0 dm-2 md0 sda sda1 sdb sdb1");
}

TEST_F(Uses, SwapFileOfAFileSystem)
{
	mounts("20 1 8:2 / / rw - ext4 /dev/sda2 rw\n21 20 8:18 / /var rw - ext4 /dev/sdb2 rw\n");
	swaps("/var/swap\\040file                       file\t1000\t0\t-2\n");
	EXPECT_EQ(with(SWAP), "sdb sdb2");
}

TEST_F(Uses, RootOfSeveralDevices)
{
	link("sys/fs/btrfs/0d5a0d7e-0000-4000-8000-000000000001/devices/sda2", "../../../../block/sda2");
	link("sys/fs/btrfs/0d5a0d7e-0000-4000-8000-000000000001/devices/sdb2", "../../../../block/sdb2");
	mounts("20 1 0:25 /@ / rw - btrfs /dev/sdb2 rw,subvol=/@\n");
	swaps("");
	EXPECT_EQ(with(ROOT), "sda sda2 sdb sdb2");
}

TEST_F(Uses, OnlyWhatIsOnTopCounts)
{
	mounts("20 1 8:1 / / rw - ext4 /dev/sda1 rw\n21 20 8:2 / /boot rw - ext4 /dev/sda2 rw\n"
	       "22 21 8:18 / /boot rw - ext4 /dev/sdb2 rw\n");
	swaps("");
	EXPECT_EQ(with(BOOT), "sdb sdb2");
}

TEST_F(Uses, NobodyTellsWhatAnOverlayLiesOn)
{
	mounts("20 1 0:40 / / rw - overlay overlay rw,lowerdir=/a\n");
	swaps("");
	EXPECT_EQ(with(ROOT), "dm-0? dm-1? dm-2? md0? sda? sda1? sda2? sdb? sdb1? sdb2?");
	EXPECT_EQ(with(BOOT), "");
}

TEST_F(Uses, NoDeviceIsUnderARootOnTheNetwork)
{
	mounts("20 1 0:40 / / rw - nfs4 server:/root rw\n");
	swaps("");
	EXPECT_EQ(with(ROOT), "");
}

TEST_F(Uses, WithoutTheTableOfMountsNothingIsKnown)
{
	swaps("/dev/dm-2                               partition\t1000\t0\t-2\n");
	EXPECT_EQ(with(ROOT), "dm-0? dm-1? dm-2? md0? sda? sda1? sda2? sdb? sdb1? sdb2?");
	EXPECT_EQ(with(BOOT), with(ROOT));
}

TEST_F(Uses, AKernelThatCannotSwapHasNoTable)
{
	mounts("20 1 8:2 / / rw - ext4 /dev/sda2 rw\n");
	EXPECT_EQ(with(SWAP), "");
}

TEST_F(Uses, SlavesInARingEnd)
{
	on("dm-3", "253:3", {"dm-4"});
	on("dm-4", "253:4", {"dm-3", "dm-4"});
	mounts("20 1 253:3 / / rw - ext4 /dev/dm-3 rw\n");
	EXPECT_EQ(with(ROOT), "dm-3 dm-4");
}

} // namespace
