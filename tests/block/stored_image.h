// SPDX-License-Identifier: Apache-2.0
// Disks of images/NAME/image, and what is found on a disk as text, as in images/NAME/expected.
#ifndef DISKSCOUT_TESTS_BLOCK_STORED_IMAGE_H
#define DISKSCOUT_TESTS_BLOCK_STORED_IMAGE_H

#include "diskscout_block.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

// A disk in memory, which may be as large as any; make_images tells how it is stored.
class StoredImage
{
public:
	explicit StoredImage(off_t bytes) : fd(memfd_create("disk", MFD_CLOEXEC)), size(bytes)
	{
		EXPECT_EQ(ftruncate(fd, size), 0);
	}
	explicit StoredImage(const std::string &name) : StoredImage(0)
	{
		std::ifstream in(folder() / name / "image");
		EXPECT_TRUE(in.is_open()) << name;
		for (std::string line; std::getline(in, line);)
			read_line(line);
	}
	StoredImage(const StoredImage &) = delete;
	StoredImage &operator=(const StoredImage &) = delete;
	~StoredImage() { close(fd); }

	static std::filesystem::path folder() { return std::filesystem::path(BLOCK_DIRECTORY) / "images"; }

	void put(off_t at, const std::string &bytes)
	{
		EXPECT_EQ(pwrite(fd, bytes.data(), bytes.size(), at), static_cast<ssize_t>(bytes.size()));
	}
	std::string get(off_t at, size_t length) const
	{
		std::string bytes(length, '\0');
		EXPECT_EQ(pread(fd, bytes.data(), length, at), static_cast<ssize_t>(length));
		return bytes;
	}
	// A way to it for other programs while it lives.
	std::string path() const { return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(fd); }

	const int fd;
	off_t size;
	unsigned sector = 0; // 0: what a file is taken to have

private:
	void read_line(const std::string &line)
	{
		std::istringstream words(line);
		std::string first;
		std::string second;
		words >> first >> second;
		if (first[0] == '#')
			return;
		if (first == "size") {
			size = std::stoll(second);
			EXPECT_EQ(ftruncate(fd, size), 0) << line;
		} else if (first == "sector") {
			sector = static_cast<unsigned>(std::stoul(second));
		} else {
			put(std::stoll(first, nullptr, 16), bytes_of(second));
		}
	}
	static std::string bytes_of(const std::string &digits)
	{
		std::string bytes;
		for (size_t at = 0; at + 1 < digits.size(); at += 2)
			bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
		return bytes;
	}
};

inline void show_field(std::ostream &to, const std::string &name, const char *text)
{
	if (text)
		to << name << ' ' << text << '\n';
}

inline std::string shown_partitions(const block_partition *first)
{
	std::ostringstream to;
	for (const block_partition *at = first; at; at = at->next) {
		to << "partition " << at->number << " at " << at->start << ", " << at->size << " bytes\n";
		show_field(to, "\tname", at->name);
		show_field(to, "\ttype", at->type);
		show_field(to, "\tuuid", at->uuid);
		show_field(to, "\tlabel", at->label);
		if (at->flags != BLOCK_ABSENT)
			to << "\tflags 0x" << std::hex << static_cast<unsigned long long>(at->flags)
			   << std::dec << '\n';
	}
	return to.str();
}

inline std::string shown_content(const block_content &content)
{
	std::ostringstream to;
	to << (content.ambiguous == 1 ? "ambiguous\n" : "");
	if (content.table)
		to << "table " << content.table << (content.table_id ? " " : "")
		   << (content.table_id ? content.table_id : "") << '\n';
	to << shown_partitions(content.partitions);
	show_field(to, "usage", content.usage);
	show_field(to, "type", content.type);
	show_field(to, "label", content.label);
	show_field(to, "uuid", content.uuid);
	show_field(to, "uuid_sub", content.uuid_sub);
	show_field(to, "version", content.version);
	return to.str();
}

#endif
