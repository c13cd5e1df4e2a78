// SPDX-License-Identifier: Apache-2.0
// All devices of a host: many, oddly named, at a known cost, seen by several threads, coming and going.
#include "host.h"
#include "inventory.h"
#include "outside.h"
#include "told.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
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
		const query_answer_t told = devices_told();
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

// Processor time, whatever else the machine does: ten times as many take ten times as long, not a hundred
// times.
TEST_F(Devices, TenThousandAreToldWithoutALimit)
{
	constexpr int MANY = 10000;
	constexpr int SOME = 1000;
	const auto ask = [](int expected) {
		const clock_t begin = clock();
		const Answer<block_device> devices(list_devices);
		const clock_t spent = clock() - begin;
		EXPECT_EQ(devices.count, expected);
		int number = 0;
		for (const block_device *at = devices.first(); at; at = at->next)
			EXPECT_EQ(at->name, "loop" + std::to_string(number++));
		return spent;
	};
	for (int i = 0; i < SOME; i++)
		loop(i);
	show();
	const clock_t some = ask(SOME);
	for (int i = SOME; i < MANY; i++)
		loop(i);
	EXPECT_LT(ask(MANY), 40 * some);
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
		const query_answer_t devices = devices_told();
		const query_answer_t links = links_told();
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
	const query_answer_t devices = devices_told();
	const query_answer_t links = links_told();
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

// A device as its driver makes it and takes it away: at first its link goes, then its uevent, then all else.
class Coming
{
public:
	Coming(const std::filesystem::path &host, std::string name)
	    : host_(host.string()), name_(std::move(name)), link_(host_ + "/sys/class/block/" + name_)
	{
	}

	// Each time in a folder of its own: the stand-in for the kernel finds by path what is open, and must
	// not find the next one there.
	void come(int turn)
	{
		const std::string place = "devices/virtual/block/" + std::to_string(turn);
		folder_ = host_ + "/sys/" + place;
		for (const char *folder : {"", "/device", "/device/queue", "/device/loop"})
			EXPECT_EQ(mkdir((folder_ + folder).c_str(), 0700), 0);
		folder_ += "/device";
		for (const file_t &file : FILES)
			write(file.name, turn % 2 != 0 ? file.odd : file.even);
		EXPECT_EQ(symlink(("../../" + place + "/device").c_str(), link_.c_str()), 0);
	}

	void go() const
	{
		EXPECT_EQ(unlink(link_.c_str()), 0);
		for (const file_t &file : FILES)
			EXPECT_EQ(unlink((folder_ + "/" + file.name).c_str()), 0);
		for (const char *folder : {"/loop", "/queue", ""})
			EXPECT_EQ(rmdir((folder_ + folder).c_str()), 0);
		EXPECT_EQ(rmdir(folder_.substr(0, folder_.rfind('/')).c_str()), 0);
	}

private:
	struct file_t {
		const char *name;
		const char *even;
		const char *odd;
	};
	static constexpr file_t FILES[] = {
		{"uevent", "MAJOR=7\nMINOR=5\nDEVNAME=loop5\nDEVTYPE=disk\n",
	         "MAJOR=7\nMINOR=6\nDEVNAME=loop5\nDEVTYPE=disk\n"},
		{"size", "1000\n", "2000\n"},
		{"ro", "0\n", "1\n"},
		{"removable", "0\n", "1\n"},
		{"queue/rotational", "0\n", "1\n"},
		{"queue/logical_block_size", "512\n", "4096\n"},
		{"queue/physical_block_size", "512\n", "4096\n"},
		{"loop/backing_file", "/even\n", "/odd\n"},
	};

	void write(const std::string &name, const char *text) const
	{
		const int fd = open((folder_ + "/" + name).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
		EXPECT_EQ(::write(fd, text, strlen(text)), static_cast<ssize_t>(strlen(text)));
		close(fd);
	}

	const std::string host_, name_, link_;
	std::string folder_;
};

// Plugged and unplugged 10,000 times while the list is read: each answer has one of the two whole, or none.
TEST_F(Devices, ComeAndGoWhileTheyAreRead)
{
	constexpr int TURNS = 10000;
	std::filesystem::remove_all(root);
	root = quick_directory();
	put("host.txt", "");
	loop(0);
	show();
	Coming device(host(), "loop5");
	device.come(0);
	const query_answer_t even = devices_told();
	device.go();
	device.come(1);
	const query_answer_t odd = devices_told();
	device.go();
	const query_answer_t none = devices_told();
	ASSERT_EQ(even.records.size(), 2U);
	ASSERT_EQ(none.records.size(), 1U);
	ASSERT_NE(even.records, odd.records);

	std::atomic<int> turn{0};
	std::thread changes([&] {
		for (; turn < TURNS; turn++) {
			device.come(turn);
			device.go();
		}
	});
	int seen = 0;
	int wrong = 0;
	while (turn < TURNS) {
		const query_answer_t told = devices_told();
		seen += told.records.size() == 2;
		wrong += told.result != 0 || (told.records != even.records && told.records != odd.records &&
		                              told.records != none.records);
	}
	changes.join();
	EXPECT_EQ(wrong, 0);
	EXPECT_GT(seen, 0);
}

} // namespace
