// SPDX-License-Identifier: Apache-2.0
// A captured host that a test builds for itself in a temporary directory, and what tests of the readers
// share.
//
//   host.file("/proc/uptime", "350.25 1200.00\n");
//   host.table("device /dev/hda\n\tBLKGETSIZE 524288\n");
//   host.show();
#ifndef DISKSCOUT_TESTS_HDD_HOST_H
#define DISKSCOUT_TESTS_HDD_HOST_H

#include "hdd/sal/src/0/def.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string.h>
#include <string>
#include <string_view>
#include <vector>

class Host
{
public:
	Host();
	~Host();
	Host(const Host &) = delete;
	Host &operator=(const Host &) = delete;

	Host &file(const std::string &path, std::string_view text);
	Host &link(const std::string &path, const std::string &target);
	Host &directory(const std::string &path);
	Host &remove(const std::string &path);
	// Lines for the table of devices and mounts.
	Host &table(std::string_view lines);
	// Makes the program see the host as it stands now, with an empty log.
	void show();

	// The lines of the block-device table after its heading.
	Host &partitions(std::string_view lines);
	// The four files of one drive, entered in /proc/ide as the kernel does: as a link.
	Host &ide_drive(const std::string &name, const std::string &media, const std::string &model = "MODEL",
	                const std::string &sn = "SN", const std::string &rev = "REV");

	// What the program would have changed since show().
	std::vector<std::string> log() const;
	// Where a file of the host really lies.
	std::string path(const std::string &inside) const { return root_ + inside; }

private:
	std::string top_;
	std::string root_;
	std::string table_;
};

// Shows an empty host; afterwards no descriptor may be left open and no child unwaited for.
class HostTest : public ::testing::Test
{
protected:
	void SetUp() override;
	void TearDown() override;
	Host host;

private:
	int descriptors_ = 0;
};

// The IDENTIFY data of a drive as the kernel shows it: 32 lines of 8 words.
std::string identify(const std::string &sn, const std::string &rev);
std::string identify_lines(int lines);
// One device of /proc/scsi/scsi in the kernel's columns.
std::string scsi_block(int id, const std::string &vendor = "ACME", const std::string &model = "DISK",
                       const std::string &rev = "1.0", const std::string &type = "Direct-Access");
extern const char *const SCSI_HEADING;

std::string repeat(std::string_view text, int times);
std::string number(long value);
std::vector<std::string> lines_of(const std::string &text);
int open_descriptors();

// Any filter: counts its calls in the filter_calls_t that arg points to, and answers as that says.
struct filter_calls_t {
	int answer;
	int calls;
};
int counting_filter(const void *item, const void *arg);

// A record full of rubbish: what a reader does not clear shows.
template <class Record> std::unique_ptr<Record> soiled()
{
	auto record = std::make_unique<Record>();
	memset(static_cast<void *>(record.get()), 0xa5, sizeof(Record));
	return record;
}

template <class Record> bool is_zero(const Record &record)
{
	const auto *bytes = reinterpret_cast<const unsigned char *>(&record);
	for (size_t i = 0; i < sizeof record; i++)
		if (bytes[i] != 0)
			return false;
	return true;
}

// A str_t or fname_t whose text is this and whose every other byte is 0.
template <size_t size> std::string text_of(const char (&field)[size])
{
	const std::string text(field, strnlen(field, size));
	EXPECT_LT(text.size(), size) << "no NUL";
	EXPECT_EQ(std::string(field + text.size(), size - text.size()), std::string(size - text.size(), '\0'))
		<< "behind " << text;
	return text;
}

// The counts of a list, the heads of its items, and that its free slots are clear.
template <class List> void expect_shape(const List &list, int num, int num_real, int lmt)
{
	EXPECT_EQ(list.num, num);
	EXPECT_EQ(list.num_real, num_real);
	EXPECT_EQ(list.lmt, lmt);
	EXPECT_EQ(list.parent, nullptr);
	int slot = 0;
	for (const auto &item : list.item) {
		if (item.tag == 0) {
			EXPECT_TRUE(is_zero(item)) << "slot " << slot;
		} else {
			EXPECT_EQ(item.tag, 1) << "slot " << slot;
			EXPECT_EQ(item.index, slot);
			EXPECT_EQ(item.parent, &list) << "slot " << slot;
		}
		slot++;
	}
}

// A text as printf makes it.
std::string printed(const char *format, ...) __attribute__((format(printf, 1, 2)));
// The low 32 bits of an address.
unsigned low32(const void *address);
// The line of asterisks that every dump begins with, and the line below it.
template <class List> std::string dump_head(const List &list)
{
	return std::string(58, '*') + printed("\nnum=%d, num_real=%d, lmt=%d, parent=%08x, this=%08x\n",
	                                      list.num, list.num_real, list.lmt, low32(list.parent),
	                                      low32(&list));
}

// What the action writes to standard error.
template <class Action> std::string stderr_of(Action action)
{
	::testing::internal::CaptureStderr();
	action();
	return ::testing::internal::GetCapturedStderr();
}

#endif
