// All devices of a host: many, oddly named, at a known cost, seen by several threads, coming and going.
#include "host.h"
#include "inventory.h"
#include "outside.h"
#include "told.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace
{

class Devices : public BlockHost
{
protected:
	// One folder for all of a kind: of the class's links each is a device, and a test has a thousand of
	// them.
	void loop(int number)
	{
		const std::string path = "devices/virtual/block/loop0";
		if (number > 0)
			return link("sys/class/block/loop" + std::to_string(number), "../../" + path);
		device(path, "7:0", 2048);
		whole_device(path);
		put("sys/" + path + "/loop/backing_file", "/image\n");
	}

	void disk(int number)
	{
		const std::string port = "devices/pci0000:00/0000:00:17.0/ata1";
		const std::string unit = port + "/host0/target0:0:0/0:0:0:0";
		const std::string path = unit + "/block/sda";
		if (number > 0)
			return link("sys/class/block/" + disk_name(number), "../../" + path);
		device(path, "8:0", 2048);
		whole_device(path);
		link("sys/" + path + "/device", "../../../0:0:0:0");
		put("sys/" + port + "/link1/ata_link/link1/sata_spd", "6.0 Gbps\n");
		put("sys/" + unit + "/vendor", "ACME\n");
		put("sys/" + unit + "/model", "DISK\n");
		put("sys/" + unit + "/rev", "1\n");
		put("sys/" + unit + "/state", "running\n");
		put("sys/" + unit + "/vpd_pg80", std::string("\0\x80\0\4", 4) + "1234");
		put("sys/" + unit + "/vpd_pg83", std::string("\0\x83\0\0", 4));
	}

	// "sda" to "sdz", "sdaa" to "sdzz", "sdaaa".
	static std::string disk_name(int number)
	{
		std::string letters;
		for (int left = number + 1; left > 0; left = (left - 1) / 26)
			letters.insert(letters.begin(), static_cast<char>('a' + (left - 1) % 26));
		return "sd" + letters;
	}

	void whole_device(const std::string &path)
	{
		for (const char *name : {"ro", "removable", "queue/rotational"})
			put("sys/" + path + "/" + name, "0\n");
		for (const char *name : {"queue/logical_block_size", "queue/physical_block_size"})
			put("sys/" + path + "/" + name, "512\n");
	}

	static long calls_for(size_t devices)
	{
		replay_count_calls();
		const answer_t told = devices_told();
		const long calls = replay_calls();
		EXPECT_EQ(told.result, 0);
		EXPECT_EQ(told.records.size(), devices);
		return calls;
	}

	// However many there are, one more costs the same.
	template <class Make>
	void expect_costs(long each, std::initializer_list<int> counts, const Make &make)
	{
		long before = 0;
		int made = 0;
		for (const int count : counts) {
			const int more = count - made;
			while (made < count)
				make(made++);
			ASSERT_EQ(replay_use(host().c_str()), 0);
			const long calls = calls_for(static_cast<size_t>(count));
			EXPECT_EQ(before == 0 ? each : (calls - before) / more, each) << count;
			EXPECT_EQ(before == 0 ? 0 : (calls - before) % more, 0) << count;
			before = calls;
		}
	}

	static std::string names()
	{
		const Answer<block_device> devices(list_devices);
		std::string all;
		for (const block_device *at = devices.first(); at; at = at->next)
			all += std::string(at == devices.first() ? "" : " ") + at->name;
		return all;
	}
};

TEST_F(Devices, AreInTheOrderInWhichPeopleCount)
{
	for (const char *name : {"sda10", "sda2", "sda", "sdb", "sdaa", "loop10", "loop9", "nvme0n10",
	                         "nvme0n2", "nvme0n2p1", "md127", "md0"})
		device(std::string("devices/") + name, "8:1", 1);
	show();
	EXPECT_EQ(names(), "loop9 loop10 md0 md127 nvme0n2 nvme0n2p1 nvme0n10 sda sda2 sda10 sdaa sdb");
}

TEST_F(Devices, AreFoundByNumberNameAndNode)
{
	device("devices/a/sda", "8:0", 1);
	device("devices/a/sda/sda1", "8:1", 1, "partition", "PARTN=1\n");
	device("devices/a/cciss!c0d0", "104:0", 1);
	device("devices/a/sdb", "65:1048575", 1);
	show();
	Arena arena;
	Inventory devices(&arena);
	ASSERT_TRUE(devices.scan());
	ASSERT_EQ(devices.size(), 4U);
	EXPECT_STREQ(devices.by_number(8, 1)->record.name, "sda1");
	EXPECT_STREQ(devices.by_number(65, 1048575)->record.name, "sdb");
	EXPECT_EQ(devices.by_number(8, 2), nullptr);
	EXPECT_EQ(devices.by_number(BLOCK_ABSENT, BLOCK_ABSENT), nullptr);
	EXPECT_STREQ(devices.by_sysname("cciss!c0d0")->record.name, "cciss/c0d0");
	EXPECT_EQ(devices.by_sysname("cciss/c0d0"), nullptr);
	EXPECT_STREQ(devices.by_node("/dev/sda1")->record.name, "sda1");
	EXPECT_EQ(devices.by_node("sda1"), nullptr);
	EXPECT_EQ(devices.by_node("/dev/nothing"), nullptr);
	EXPECT_EQ(devices.by_sysname("sda1")->whole, devices.by_sysname("sda"));
}

TEST_F(Devices, TenThousandAreToldWithoutALimit)
{
	constexpr int MANY = 10000;
	for (int i = 0; i < MANY; i++)
		loop(i);
	show();
	const auto begin = std::chrono::steady_clock::now();
	const Answer<block_device> devices(list_devices);
	const auto spent = std::chrono::steady_clock::now() - begin;
	EXPECT_EQ(devices.count, MANY);
	EXPECT_LT(spent, std::chrono::seconds(20));
	int number = 0;
	for (const block_device *at = devices.first(); at; at = at->next)
		ASSERT_EQ(at->name, "loop" + std::to_string(number++));
}

// Opened and left, where it is, seven attributes by three calls each, the file behind it; and its entry.
TEST_F(Devices, EachLoopDeviceCostsTwentyEightCalls)
{
	constexpr long EACH = 2 + 1 + 7 * 3 + 3 + 1;
	expect_costs(EACH, {10, 100, 1000}, [this](int number) { loop(number); });
}

// The same without the file, and of the unit vendor, model, revision, two pages and state; the speed of its
// link takes seven.
TEST_F(Devices, EachDiskCostsFiftyCalls)
{
	constexpr long EACH = 2 + 1 + 7 * 3 + 1 + 6 * 3 + 7;
	expect_costs(EACH, {10, 100, 1000}, [this](int number) { disk(number); });
}

TEST_F(Devices, OpenNoneOfThem)
{
	for (const char *captured : {"ata-disks", "scsi", "usb-and-cards", "nvme-multipath", "virtio",
	                             "virtual", "md", "mapper", "hostile"}) {
		ASSERT_EQ(replay_use((std::string(BLOCK_HOSTS) + "/" + captured).c_str()), 0);
		const Watch watch([captured](const std::string &path) {
			EXPECT_TRUE(path.compare(0, 5, "/dev/") != 0 || path == "/dev/mapper/control")
				<< captured << " " << path;
		});
		EXPECT_EQ(devices_told().result, 0);
		EXPECT_EQ(links_told().result, 0);
		void *list = nullptr;
		int count = 0;
		EXPECT_EQ(list_arrays(&list, &count), 0);
		release_list(&list);
	}
}

TEST_F(Devices, OfVirtioAreNotAskedForTheirNumber)
{
	device("devices/pci0000:00/0000:00:05.0/virtio1/block/vda", "254:0", 8);
	put("sys/devices/pci0000:00/0000:00:05.0/virtio1/block/vda/serial", "asked");
	show();
	const Watch watch([](const std::string &path) { EXPECT_EQ(path.find("serial"), std::string::npos); });
	const Answer<block_device> devices(list_devices);
	EXPECT_EQ(shown(devices.named("vda").serial), "(absent)");
	EXPECT_EQ(shown(devices.named("vda").serial_source), "not asked");
}

TEST_F(Devices, ThatCannotBeAskedAreNoEmptyList)
{
	device("devices/virtual/block/loop0", "7:0", 8);
	show();
	rlimit limit;
	ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
	// From none on until it has enough.
	const int free = dup(0);
	close(free);
	int failures = 0;
	for (int more = 0; more < 20; more++) {
		const rlimit narrow = {static_cast<rlim_t>(free + more), limit.rlim_max};
		ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &narrow), 0);
		const answer_t devices = devices_told();
		const answer_t links = links_told();
		ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
		if (devices.result != 0) {
			EXPECT_EQ(devices.error, EMFILE);
			failures++;
		} else {
			EXPECT_EQ(devices.records.size(), 1U) << more;
		}
		EXPECT_TRUE(links.result == 0 || links.error == EMFILE) << links.error;
	}
	EXPECT_GE(failures, 2);
	EXPECT_LT(failures, 20);
}

TEST_F(Devices, AreTheSameToManyThreads)
{
	ASSERT_EQ(replay_use(BLOCK_HOSTS "/scsi"), 0);
	const answer_t devices = devices_told();
	const answer_t links = links_told();
	const int counted = memory_counter_block;
	std::atomic<int> differences{0};
	std::vector<std::thread> threads;
	for (int i = 0; i < 4; i++) {
		threads.emplace_back([&] {
			for (int round = 0; round < 50; round++) {
				differences += devices_told().records != devices.records;
				differences += links_told().records != links.records;
			}
		});
	}
	for (std::thread &thread : threads)
		thread.join();
	EXPECT_EQ(differences, 0);
	EXPECT_EQ(memory_counter_block, counted);
}

// Two devices take turns under one name, 10,000 times, while the list is read: each answer has one of them
// whole, or none.
TEST_F(Devices, ComeAndGoWhileTheyAreRead)
{
	loop(0);
	const std::string block = "sys/devices/virtual/block/";
	device("devices/virtual/block/one/loop5", "7:5", 1111);
	whole_device("devices/virtual/block/one/loop5");
	put(block + "one/loop5/loop/backing_file", "/one\n");
	put(block + "one/loop5/ro", "0\n");
	std::filesystem::remove(host() / "sys/class/block/loop5");
	device("devices/virtual/block/other/loop5", "7:5", 2222);
	whole_device("devices/virtual/block/other/loop5");
	put(block + "other/loop5/loop/backing_file", "/other\n");
	put(block + "other/loop5/ro", "1\n");
	show();

	const std::string top = (host() / block).string();
	const std::string name = (host() / "sys/class/block/loop5").string();
	std::atomic<bool> done{false};
	std::thread changes([&] {
		for (int turn = 0; turn < 10000; turn++) {
			const std::string which = turn % 2 == 0 ? "one" : "other";
			unlink(name.c_str());
			EXPECT_EQ(rename((top + which).c_str(), (top + which + ".gone").c_str()), 0);
			EXPECT_EQ(rename((top + which + ".gone").c_str(), (top + which).c_str()), 0);
			EXPECT_EQ(symlink(("../../devices/virtual/block/" + which + "/loop5").c_str(),
			                  name.c_str()),
			          0);
		}
		done = true;
	});
	int seen = 0;
	while (!done) {
		const answer_t told = devices_told();
		EXPECT_EQ(told.result, 0) << strerror(told.error);
		ASSERT_GE(told.records.size(), 1U);
		ASSERT_LE(told.records.size(), 2U);
		if (told.records.size() < 2)
			continue;
		seen++;
		const told_t &device = told.records[1];
		ASSERT_TRUE(device.count("size") && device.count("backing_file") &&
		            device.count("read_only"));
		const bool one = device.at("size") == "568832";
		EXPECT_EQ(device.at("backing_file"), one ? "/one" : "/other");
		EXPECT_EQ(device.at("read_only"), one ? "0" : "1");
		EXPECT_EQ(device.at("kind"), "loop");
		if (HasFailure())
			break;
	}
	changes.join();
	EXPECT_GT(seen, 0);
}

} // namespace
