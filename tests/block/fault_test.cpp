// SPDX-License-Identifier: Apache-2.0
// Outside calls that fail, one at a time and from there on; devices that go away while they are read.
#include "host.h"
#include "outside.h"
#include "told.h"

#include "replay/replay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace
{

namespace fs = std::filesystem;

// Texts of the identity: when the first place that has one cannot be read, another one is told, by its own
// source.
bool has_a_source(const std::string &field)
{
	static const char *const FIELDS[] = {"model", "serial", "firmware"};
	return std::any_of(std::begin(FIELDS), std::end(FIELDS), [&field](const std::string &name) {
		return field == name || field == name + "_source";
	});
}

// What a record tells that the whole answer does not; empty: nothing.
std::string untrue(const told_t &told, const told_t &whole)
{
	std::string all;
	for (const auto &[field, value] : told) {
		const auto right = whole.find(field);
		if (right != whole.end() && right->second == value)
			continue;
		// An ATA port that does not tell its link's speed is that: an ATA port.
		if (field == "transport" && value == "ata" && right != whole.end() && right->second == "sata")
			continue;
		// Of several links those are told that can be seen to lead to the device.
		if (field == "links" && right != whole.end() && value.size() < right->second.size())
			continue;
		if (has_a_source(field) && whole.count(field) &&
		    told.at(field.substr(0, field.find('_')) + "_source") !=
		            whole.at(field.substr(0, field.find('_')) + "_source"))
			continue;
		all += field + " is " + value + "; ";
	}
	return all;
}

void compare(const query_answer_t &told, const query_answer_t &whole, const std::string &when)
{
	if (told.result != 0) {
		EXPECT_NE(told.error, 0) << when;
		EXPECT_TRUE(told.records.empty()) << when;
		return;
	}
	// Nothing has gone away: all of them, or a failure.
	ASSERT_EQ(told.records.size(), whole.records.size()) << when;
	for (size_t i = 0; i < whole.records.size(); i++)
		EXPECT_EQ(untrue(told.records[i], whole.records[i]), "")
			<< when << " " << whole.records[i].begin()->second;
}

class FailingCalls : public ::testing::TestWithParam<const char *>
{
protected:
	FailingCalls() { EXPECT_EQ(replay_use((std::string(BLOCK_HOSTS) + "/" + GetParam()).c_str()), 0); }
	~FailingCalls() override
	{
		replay_fail_call(0, 0);
		replay_use(nullptr);
	}

	static void walk(query_answer_t (*ask)())
	{
		const query_answer_t whole = ask();
		ASSERT_EQ(whole.result, 0);
		ASSERT_FALSE(whole.records.empty());
		for (const int from_there_on : {0, 1}) {
			for (long nth = 1;; nth++) {
				const long blocks = blocks_held();
				const int descriptors = descriptors_open();
				replay_fail_call(nth, from_there_on);
				const query_answer_t told = ask();
				replay_fail_call(0, 0);
				compare(told, whole,
				        "call " + std::to_string(nth) + (from_there_on ? " and on" : ""));
				EXPECT_EQ(blocks_held(), blocks) << nth;
				EXPECT_EQ(descriptors_open(), descriptors) << nth;
				if (replay_calls() < nth || HasFailure())
					break;
			}
		}
	}
};

TEST_P(FailingCalls, OfDevicesTellNothingThatIsNotSo)
{
	walk(devices_told);
}

TEST_P(FailingCalls, OfLinksTellNothingThatIsNotSo)
{
	walk(links_told);
}

INSTANTIATE_TEST_SUITE_P(Hosts, FailingCalls,
                         ::testing::Values("ata-disks", "scsi", "usb-and-cards", "nvme-multipath", "virtio",
                                           "mapper", "md"),
                         [](const auto &row) {
				 std::string name = row.param;
				 std::replace(name.begin(), name.end(), '-', '_');
				 return name;
			 });

// A copy of a host whose devices can be taken away.
class GoingAway : public ::testing::Test
{
protected:
	GoingAway() : top_(quick_directory()) {}
	~GoingAway() override
	{
		replay_use(nullptr);
		std::error_code ignored;
		fs::remove_all(top_, ignored);
	}

	// Shows a host; take_away() is for this device of it.
	void make(const char *host, const std::string &device)
	{
		ASSERT_EQ(replay_use(nullptr), 0);
		fs::remove_all(top_);
		fs::copy(fs::path(BLOCK_HOSTS) / host, top_,
		         fs::copy_options::recursive | fs::copy_options::copy_symlinks);
		const fs::path folder = fs::canonical(top_ / "sys/class/block" / device);
		parts_.clear();
		note(folder);
		for (const auto &entry : fs::recursive_directory_iterator(folder))
			note(entry.path());
		for (const auto &entry : fs::directory_iterator(top_ / "sys/class/block")) {
			const std::string other = fs::canonical(entry.path()).string() + "/";
			if (other.compare(0, folder.string().size() + 1, folder.string() + "/") == 0)
				note(entry.path());
		}
		ASSERT_EQ(replay_use(top_.c_str()), 0);
	}

	// As the kernel does: first the class's links, then what is below, at last the folder.
	void take_away() const
	{
		for (auto part = parts_.rbegin(); part != parts_.rend(); ++part)
			EXPECT_EQ(remove(part->path.c_str()), 0) << part->path;
	}

	// The link alone, which is the first to go.
	void take_link_away(const std::string &device) const
	{
		EXPECT_EQ(remove((top_ / "sys/class/block" / device).c_str()), 0);
	}

	void bring_back() const
	{
		for (const part_t &part : parts_) {
			if (part.type == fs::file_type::directory)
				fs::create_directory(part.path);
			else if (part.type == fs::file_type::symlink)
				fs::create_symlink(part.content, part.path);
			else
				std::ofstream(part.path, std::ios::binary) << part.content;
		}
	}

private:
	struct part_t {
		fs::path path;
		fs::file_type type;
		std::string content;
	};

	void note(const fs::path &path)
	{
		const fs::file_type type = fs::symlink_status(path).type();
		std::ostringstream content;
		if (type == fs::file_type::symlink)
			content << fs::read_symlink(path).string();
		else if (type == fs::file_type::regular)
			content << std::ifstream(path, std::ios::binary).rdbuf();
		parts_.push_back({path, type, content.str()});
	}

	fs::path top_;
	std::vector<part_t> parts_;
};

std::string name_in(const told_t &told)
{
	return told.count("name") ? told.at("name") : told.at("upper") + " on " + told.at("lower");
}

// Without what depends on which other devices are there.
told_t alone(told_t told)
{
	for (const char *use : {"under_root", "under_boot", "under_swap"})
		told.erase(use);
	return told;
}

struct going_t {
	const char *host;
	const char *device;
};

// Whether a record may be missing when the device is gone: its own, its partitions', and links of those.
bool goes_with(const std::string &name, const std::string &device)
{
	return name.find(device) != std::string::npos;
}

void compare_without(const going_t &row, const query_answer_t &told, const query_answer_t &whole,
                     const std::string &when)
{
	ASSERT_EQ(told.result, 0) << when;
	size_t at = 0;
	for (const told_t &record : whole.records) {
		const std::string name = name_in(record);
		if (at < told.records.size() && name_in(told.records[at]) == name)
			EXPECT_EQ(alone(told.records[at++]), alone(record)) << when << name;
		else
			EXPECT_TRUE(goes_with(name, row.device)) << when << name;
	}
	EXPECT_EQ(at, told.records.size()) << when;
}

// Its folder is still there, but nothing tells any more where it is attached.
TEST_F(GoingAway, WithItsLinkADeviceIsLeftOut)
{
	make("virtual", "bcache0");
	const query_answer_t whole = devices_told();
	bool met = false;
	query_answer_t told;
	{
		const Watch watch([&](const std::string &path) {
			if (met && path == "uevent") {
				take_link_away("bcache0");
				met = false;
			}
			met = met || path == "bcache0";
		});
		told = devices_told();
	}
	EXPECT_EQ(told.records.size(), whole.records.size() - 1);
	compare_without({"virtual", "bcache0"}, told, whole, "");
}

// At each file that is opened the device goes away: it is told whole, or not at all. The others stay.
TEST_F(GoingAway, WhileItIsReadLeavesADeviceOut)
{
	static const going_t ROWS[] = {
		{"ata-disks", "sda"}, {"usb-and-cards", "sdc"}, {"mapper", "dm-0"}, {"nvme", "nvme0n1"}};

	for (const going_t &row : ROWS) {
		make(row.host, row.device);
		for (query_answer_t (*ask)() : {devices_told, links_told}) {
			const query_answer_t whole = ask();
			// From when the device is looked at until it has been left for the next ones.
			constexpr long FILES = 60;
			long first = 0;
			long opened = 0;
			for (long nth = 1; nth < first + FILES && (first == 0 || opened >= nth); nth++) {
				bool gone = false;
				opened = 0;
				query_answer_t told;
				{
					const Watch watch([&](const std::string &path) {
						++opened;
						if (first == 0 && path == row.device)
							first = nth = opened;
						if (opened != nth || first == 0)
							return;
						take_away();
						gone = true;
					});
					told = ask();
				}
				if (gone)
					bring_back();
				compare_without(row, told, whole,
				                std::string(row.host) + " file " + std::to_string(nth) +
				                        ": ");
				if (HasFailure())
					return;
			}
		}
	}
}

} // namespace
