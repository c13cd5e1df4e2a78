// SPDX-License-Identifier: Apache-2.0
// Hosts told line by line, in the files of cases.h:
//
//   device devices/virtual/block/md0 9:0 4096     a device, its number, its 512-byte sectors; "partition"
//     md/level = raid1                            an attribute of it, one line
//   file proc/swaps                               a file of the host
//   | Filename  Type  Size  Used  Priority        and its lines
//   folder sys/fs/btrfs/features                  a folder without anything
//   link dev/mapper/home ../dm-0                  a link and where it leads
//   host mount / 4096 1000 900                    a line of host.txt
//
// Lines that begin with # say why.
#ifndef DISKSCOUT_TESTS_BLOCK_CASE_HOST_H
#define DISKSCOUT_TESTS_BLOCK_CASE_HOST_H

#include "cases.h"
#include "host.h"

#include <sstream>

class CaseHost : public BlockHost
{
protected:
	void describe(const std::string &text)
	{
		std::istringstream lines(text);
		for (std::string line; std::getline(lines, line);)
			if (!line.empty() && line[0] != '#')
				take_line(line);
		put("host.txt", table_);
	}

	void describe_and_show(const std::string &text)
	{
		describe(text);
		show();
	}

	// The folder of the device that was told last.
	const std::string &device_folder() const { return device_; }

private:
	void take_line(const std::string &line)
	{
		if (line.compare(0, 2, "  ") == 0)
			return take_attribute(line.substr(2));
		if (line.compare(0, 2, "| ") == 0 || line == "|")
			return add_to_file(line.substr(line.size() < 2 ? 1 : 2) + "\n");
		std::istringstream words(line);
		std::string kind;
		std::string path;
		words >> kind >> path;
		if (kind == "device") {
			std::string number;
			std::string type = "disk";
			long long sectors = 0;
			words >> number >> sectors >> type;
			device_ = "sys/" + path;
			device(path, number, sectors, type, type == "partition" ? "PARTN=1\n" : "");
		} else if (kind == "file") {
			file_ = path;
			put(file_, "");
		} else if (kind == "folder") {
			std::filesystem::create_directories(host() / path);
		} else if (kind == "link") {
			std::string target;
			words >> target;
			link(path, target);
		} else if (kind == "host") {
			table_ += line.substr(kind.size() + 1) + "\n";
		} else {
			ADD_FAILURE() << "what is this: " << line;
		}
	}

	void take_attribute(const std::string &line)
	{
		const size_t end = line.find(" = ");
		ASSERT_NE(end, std::string::npos) << line;
		put(device_ + "/" + line.substr(0, end), line.substr(end + 3) + "\n");
	}

	void add_to_file(const std::string &text)
	{
		std::ofstream(host() / file_, std::ios::binary | std::ios::app) << text;
	}

	std::string device_;
	std::string file_;
	std::string table_;
};

#endif
