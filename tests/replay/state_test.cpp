// SPDX-License-Identifier: Apache-2.0
// What the library keeps: nothing that grows.

#include "host_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/ioctl.h>
#include <sys/mount.h>

#include <cstdint>

// Present under a sanitizer, whose heap mallinfo2() knows nothing of.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

static size_t heap_bytes()
{
	if (__sanitizer_get_current_allocated_bytes != nullptr)
		return __sanitizer_get_current_allocated_bytes();
	return mallinfo2().uordblks;
}

static size_t open_descriptors()
{
	size_t count = 0;
	DIR *directory = opendir("/proc/self/fd");
	if (directory == nullptr)
		return 0;
	while (readdir(directory) != nullptr)
		++count;
	closedir(directory);
	return count;
}

class ReplayState : public HostDir
{
protected:
	// A round of everything that opens, answers and logs.
	void round()
	{
		unsigned long sectors = 0;
		const int fd = open("/dev/hda", O_RDWR);
		sum += ioctl(fd, BLKGETSIZE, &sectors);
		sum += static_cast<int>(write(fd, "x", 1));
		close(fd);
		FILE *stream = fopen("/proc/scsi/scsi", "w");
		sum += fputs("x", stream);
		fclose(stream);
		sum += unlink("/dev/none");
		sum += open("/dev/none", O_RDONLY);
		sum += access("/dev/hda", F_OK);
	}

	int sum = 0;
};

TEST_F(ReplayState, HeapAndDescriptorsDoNotGrow)
{
	put("proc/scsi/scsi", "");
	const std::string text = "device /dev/hda\nBLKGETSIZE 8\ntable 0\nentry 80 83 1 2\n";
	ASSERT_EQ(show(text), 0);
	const std::string name = host();
	replay_log_to(log().c_str());
	round();
	const size_t bytes = heap_bytes();
	const size_t descriptors = open_descriptors();
	ASSERT_GT(bytes, 0u);
	ASSERT_GT(descriptors, 0u);
	for (int i = 0; i < 50; ++i)
		round();
	EXPECT_EQ(heap_bytes(), bytes);
	EXPECT_EQ(open_descriptors(), descriptors);
	// Each round: write 1, fputs 1, the missing device -1, the others 0.
	EXPECT_EQ(sum, 51);
}

TEST_F(ReplayState, ThousandsOfSwitchesLeaveNothing)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 8\n"), 0);
	const std::string name = host();
	const size_t bytes = heap_bytes();
	const size_t descriptors = open_descriptors();
	int failures = 0;
	for (int i = 0; i < 4000; ++i) {
		failures += replay_use(name.c_str()) != 0;
		failures += replay_use(nullptr) != 0;
	}
	EXPECT_EQ(failures, 0);
	EXPECT_EQ(heap_bytes(), bytes);
	EXPECT_EQ(open_descriptors(), descriptors);
	ASSERT_EQ(replay_use(name.c_str()), 0);
	EXPECT_EQ(access("/dev/hda", F_OK), 0);
}

TEST_F(ReplayState, RefusedHostsLeaveNothing)
{
	put("host.txt", "device /dev/hda\nBLKGETSIZE x\n");
	const std::string name = host();
	int accepted = 0;
	size_t before[2] = {};
	size_t after[2] = {};
	stderr_of([&] {
		before[0] = heap_bytes();
		before[1] = open_descriptors();
		for (int i = 0; i < 200; ++i)
			accepted += replay_use(name.c_str()) == 0;
		after[0] = heap_bytes();
		after[1] = open_descriptors();
	});
	EXPECT_EQ(accepted, 0);
	EXPECT_EQ(after[0], before[0]);
	EXPECT_EQ(after[1], before[1]);
}

TEST_F(ReplayState, ManySectorsFit)
{
	std::string table = "device /dev/hda\n";
	for (int i = 0; i < 5000; ++i)
		table += "sector " + std::to_string(i) + " 41\n";
	EXPECT_EQ(show(table), 0);
}

TEST_F(ReplayState, OversizedTableIsRefused)
{
	// The text itself takes the 64 MiB but for 256 KiB; the table's head and less
	// than 64 replies of 4 KiB, with what belongs to them, take the rest.
	std::string table = "#" + std::string((64 << 20) - (256 << 10), '-') + "\n";
	for (int i = 0; i < 64; ++i)
		table += "device /dev/d" + std::to_string(i) + "\nSCSI_IOCTL_SEND_COMMAND 00\n";
	int result = 0;
	const std::string said = stderr_of([&] { result = show(table); });
	EXPECT_EQ(result, -1);
	EXPECT_NE(said.find(": the table is too large\n"), std::string::npos);
}
