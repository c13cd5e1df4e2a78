// SPDX-License-Identifier: Apache-2.0
// A captured host of today made for one test: devices in sysfs, what udev knows of them, what is mounted.
#ifndef DISKSCOUT_TESTS_BLOCK_HOST_H
#define DISKSCOUT_TESTS_BLOCK_HOST_H

#include "diskscout_block.h"
#include "replay/host_dir.h"

#include <string>

// Where a host that is written again and again lies: without a disk below it, if there is such a place.
inline std::string quick_directory()
{
	for (const std::string &top : {std::string("/dev/shm/"), ::testing::TempDir()}) {
		std::string name = top + "block-XXXXXX";
		if (mkdtemp(name.data()))
			return name;
	}
	return "";
}

class BlockHost : public HostDir
{
protected:
	BlockHost() { put("host.txt", ""); }

	// One device: its folder `path` below /sys ("devices/pci0000:00/0000:00:01.0/ata1/.../block/sda"),
	// the class's link to it, uevent, size and what else every device has. More attributes are put by
	// their path.
	void device(const std::string &path, const std::string &number, long long sectors,
	            const std::string &type = "disk", const std::string &more_uevent = "")
	{
		const std::string name = path.substr(path.rfind('/') + 1);
		const size_t colon = number.find(':');
		std::string uevent;
		if (colon != std::string::npos)
			uevent = "MAJOR=" + number.substr(0, colon) + "\nMINOR=" + number.substr(colon + 1) +
			         "\nDEVNAME=" + name + "\n";
		put("sys/" + path + "/uevent", uevent + "DEVTYPE=" + type + "\n" + more_uevent);
		put("sys/" + path + "/size", std::to_string(sectors) + "\n");
		put("sys/" + path + "/ro", "0\n");
		if (type == "disk") {
			put("sys/" + path + "/removable", "0\n");
			put("sys/" + path + "/queue/logical_block_size", "512\n");
			put("sys/" + path + "/queue/physical_block_size", "512\n");
			put("sys/" + path + "/queue/rotational", "0\n");
		}
		link("sys/class/block/" + name, "../../" + path);
	}

	void link(const std::string &name, const std::string &target)
	{
		std::filesystem::create_directories((host() / name).parent_path());
		std::filesystem::create_symlink(target, host() / name);
	}

	// What udev's database says of a device, line by line.
	void udev(const std::string &number, const std::string &lines)
	{
		put("run/udev/data/b" + number, lines);
	}

	// Shows the host; call it when everything is put.
	void show() { ASSERT_EQ(replay_use(host().c_str()), 0); }
};

// A list of records of one query, released when it ends.
template <class Record> class Answer
{
public:
	explicit Answer(int (*list)(void **, int *)) : result(list(&head_, &count)) {}
	Answer(const Answer &) = delete;
	Answer &operator=(const Answer &) = delete;
	~Answer();

	const Record *first() const { return static_cast<const Record *>(head_); }
	// The record of that name; a failed test without one.
	const Record &named(const std::string &name) const
	{
		for (const Record *at = first(); at; at = at->next)
			if (name == at->name)
				return *at;
		ADD_FAILURE() << "there is no " << name;
		static const Record none = {};
		return none;
	}

private:
	void *head_ = nullptr;

public:
	int count = 0;
	int result;
};

void release_list(void **list);

template <class Record> Answer<Record>::~Answer()
{
	release_list(&head_);
}

// A text of a record, with a word for none.
inline std::string shown(const char *text)
{
	return text ? text : "(absent)";
}

#endif
