// SPDX-License-Identifier: Apache-2.0
// What is found on disks whose making is told beside them: images/NAME/image, found as images/NAME/expected
// says. A new case is a new folder.
#include "probe.h"
#include "stored_image.h"

#include <endian.h>
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>

namespace
{

std::vector<std::string> image_names()
{
	std::vector<std::string> names;
	for (const auto &entry : std::filesystem::directory_iterator(StoredImage::folder()))
		names.push_back(entry.path().filename());
	std::sort(names.begin(), names.end());
	return names;
}

std::string file_content(const std::filesystem::path &path)
{
	std::ifstream in(path, std::ios::binary);
	EXPECT_TRUE(in.is_open()) << path;
	std::ostringstream text;
	text << in.rdbuf();
	return text.str();
}

// What is found; it lives as long as this.
struct Found {
	explicit Found(const StoredImage &image, bool whole = false)
	    : error(probe_contents(&arena, {image.fd, whole, image.sector}, &content))
	{
	}

	Arena arena;
	block_content content = {};
	int error;
};

class Image : public ::testing::TestWithParam<std::string>
{
};

TEST_P(Image, IsFoundAsItWasMade)
{
	const StoredImage image(GetParam());
	const Found found(image);
	EXPECT_EQ(found.error, 0);
	EXPECT_EQ(shown_content(found.content),
	          file_content(StoredImage::folder() / GetParam() / "expected"));
	EXPECT_EQ(found.content.ambiguous == 1, found.content.ambiguous != 0);
}

// ---- the same as another program of this library finds ----

std::string without_escapes(const std::string &text)
{
	std::string plain;
	for (size_t at = 0; at < text.size(); at++) {
		if (text[at] == '\\' && at + 1 < text.size())
			at++;
		plain += text[at];
	}
	return plain;
}

// NAME=VALUE, line by line.
std::map<std::string, std::string> blkid_values(const StoredImage &image, int *status)
{
	std::map<std::string, std::string> values;
	const std::string command =
		"PATH=$PATH:/usr/sbin:/sbin LC_ALL=C.UTF-8 blkid -p -o export " + image.path() + " 2>&1";
	FILE *out = popen(command.c_str(), "r");
	char line[1024];
	while (fgets(line, sizeof line, out)) {
		const std::string text(line, strcspn(line, "\n"));
		const size_t equals = text.find('=');
		if (equals != std::string::npos)
			values[text.substr(0, equals)] = without_escapes(text.substr(equals + 1));
	}
	*status = WEXITSTATUS(pclose(out));
	return values;
}

bool is_plain(const std::string &label)
{
	return std::all_of(label.begin(), label.end(),
	                   [](char c) { return c >= ' ' && c <= '~' && c != '\\'; });
}

std::string plain_id(const block_content &content)
{
	const std::string id = content.table_id ? content.table_id : "";
	return id.substr(0, 2) == "0x" ? id.substr(2) : id;
}

TEST_P(Image, IsFoundAsBlkidFindsIt)
{
	constexpr int NOTHING_FOUND = 2;
	constexpr int AMBIGUOUS = 8;
	const StoredImage image(GetParam());
	// It has no option for other sectors.
	if (image.sector != 0)
		return;
	int status = -1;
	auto values = blkid_values(image, &status);
	const Found found(image);
	const block_content &content = found.content;
	ASSERT_TRUE(status == 0 || status == NOTHING_FOUND || status == AMBIGUOUS) << status;
	EXPECT_EQ(content.ambiguous, status == AMBIGUOUS);
	const auto text = [](const char *field) { return std::string(field ? field : ""); };
	EXPECT_EQ(text(content.usage), values["USAGE"]);
	EXPECT_EQ(text(content.type), values["TYPE"]);
	// It has a notation of its own for what is no plain text.
	if (is_plain(text(content.label)))
		EXPECT_EQ(text(content.label), values["LABEL"]);
	else
		EXPECT_NE(values["LABEL"], "");
	EXPECT_EQ(text(content.uuid), values["UUID"]);
	EXPECT_EQ(text(content.uuid_sub), values["UUID_SUB"]);
	EXPECT_EQ(text(content.version), values["VERSION"]);
	// Where it can tell no file system apart it does not look for a table.
	if (status != AMBIGUOUS) {
		EXPECT_EQ(text(content.table), values["PTTYPE"]);
		EXPECT_EQ(plain_id(content), values["PTUUID"]);
	}
}

INSTANTIATE_TEST_SUITE_P(Stored, Image, ::testing::ValuesIn(image_names()), [](const auto &row) {
	std::string name = row.param;
	std::replace(name.begin(), name.end(), '-', '_');
	return name;
});

// ---- small disks ----

TEST(SmallDisk, HasATableOrAFileSystem)
{
	StoredImage image("ext4-on-table");
	for (const auto &[size, type] :
	     std::map<off_t, const char *>{{1440 * 1024, nullptr}, {1440 * 1024 + 512, "ext4"}}) {
		ASSERT_EQ(ftruncate(image.fd, size), 0);
		const Found found(image, true);
		EXPECT_STREQ(found.content.type, type);
		EXPECT_STREQ(found.content.table, "dos");
		EXPECT_NE(found.content.partitions, nullptr);
	}
}

TEST(SmallDisk, WithoutATableIsAFileSystem)
{
	StoredImage image("ext4");
	ASSERT_EQ(ftruncate(image.fd, 1440 * 1024), 0);
	EXPECT_STREQ(Found(image, true).content.type, "ext4");
}

TEST(SmallDisk, MayBeAPartition)
{
	StoredImage image("ext4-on-table");
	ASSERT_EQ(ftruncate(image.fd, 1024 * 1024), 0);
	EXPECT_STREQ(Found(image, false).content.type, "ext4");
}

// ---- tables without an end ----

std::string little(uint32_t number)
{
	number = htole32(number);
	return {reinterpret_cast<const char *>(&number), sizeof number};
}

std::string table_entry(char type, uint32_t start, uint32_t size)
{
	return std::string(4, '\0') + type + std::string(3, '\0') + little(start) + little(size);
}

void put_table(StoredImage *image, off_t sector, const std::string &entries)
{
	image->put(sector * 512 + 446, entries);
	image->put(sector * 512 + 510, "\x55\xaa");
}

// The disk's table and a chain of so many others, each with a logical drive.
void put_chain(StoredImage *image, uint32_t tables)
{
	put_table(image, 0, table_entry(0x05, 8, 4 * tables));
	for (uint32_t i = 0; i < tables; i++)
		put_table(image, 8 + 2 * i,
		          table_entry('\x83', 1, 1) +
		                  (i + 1 < tables ? table_entry(0x05, 2 * (i + 1), 2) : ""));
}

size_t count(const block_partition *at)
{
	size_t number = 0;
	for (; at; at = at->next)
		number++;
	return number;
}

TEST(Chain, OfAThousandTablesIsTold)
{
	StoredImage image(off_t{64} << 20);
	put_chain(&image, 1000);
	const Found found(image);
	EXPECT_EQ(found.error, 0);
	EXPECT_EQ(count(found.content.partitions), 1001);
}

// This one would take half a minute, one ten times as long an hour.
TEST(Chain, WithoutAnEndIsNotFollowed)
{
	StoredImage image(off_t{64} << 20);
	put_chain(&image, 30000);
	const Found found(image);
	EXPECT_EQ(found.error, EFBIG);
	EXPECT_EQ(found.content.table, nullptr);
}

TEST(Chain, MayReturnToAnyOfItsTables)
{
	for (const uint32_t back : {0U, 2U, 100U, 198U}) {
		StoredImage image(off_t{4} << 20);
		put_chain(&image, 100);
		put_table(&image, 8 + 2 * 99, table_entry('\x83', 1, 1) + table_entry(0x05, back, 2));
		const Found found(image);
		EXPECT_EQ(found.error, 0) << back;
		EXPECT_EQ(count(found.content.partitions), 101) << back;
	}
}

TEST(Chain, DoesNotGoOnAtALinkOfNoSize)
{
	StoredImage image(off_t{64} << 20);
	put_chain(&image, 30000);
	// What looks like a way back.
	put_table(&image, 8, table_entry(0x05, 2, 0) + table_entry(0x05, 2, 2));
	put_table(&image, 10, table_entry(0x05, 2, 0) + table_entry(0x05, 4, 2));
	EXPECT_EQ(Found(image).error, EFBIG);
}

// A table of so many entries, all empty, right in all its checksums.
uint32_t crc32(const std::string &bytes)
{
	uint32_t crc = ~0U;
	for (const char byte : bytes) {
		crc ^= static_cast<unsigned char>(byte);
		for (int bit = 0; bit < 8; bit++)
			crc = crc >> 1 ^ (crc & 1 ? 0xedb88320U : 0);
	}
	return ~crc;
}

void put_empty_gpt(StoredImage *image, uint32_t entries)
{
	const std::string zero(4, '\0');
	const auto last = static_cast<uint32_t>(image->size / 512 - 1);
	const std::string head = "EFI PART" + std::string("\0\0\1\0", 4) + little(92);
	const std::string body = little(1) + zero + little(last) + zero + little(20000) + zero +
	                         little(last - 20000) + zero + std::string(16, '\x11') + little(2) + zero +
	                         little(entries) + little(128) +
	                         little(crc32(std::string(entries * size_t{128}, '\0')));
	image->put(512, head + little(crc32(head + zero + zero + body)) + zero + body);
	put_table(image, 0, table_entry('\xee', 1, last));
}

// Read whole before its checksum is found wrong: of 4 GiB on a disk that is large enough.
TEST(GuidTable, OfMoreThan4MiBIsNotRead)
{
	for (const uint32_t entries : {32768U, 32769U}) {
		StoredImage image(off_t{32} << 20);
		put_empty_gpt(&image, entries);
		const Found found(image);
		EXPECT_EQ(found.error, entries == 32768 ? 0 : EFBIG);
		EXPECT_STREQ(found.content.table, entries == 32768 ? "gpt" : nullptr);
	}
}

// ---- what cannot be read ----

TEST(Unreadable, IsToldByItsErrorAndNothingElse)
{
	Arena arena;
	block_content content = {};
	content.name = "sda";
	content.ambiguous = BLOCK_ABSENT;
	EXPECT_NE(probe_contents(&arena, {-1, true, 0}, &content), 0);
	EXPECT_STREQ(content.name, "sda");
	EXPECT_EQ(content.ambiguous, BLOCK_ABSENT);
}

TEST(Unreadable, PartOfADiskLeavesNothingToldOfTheRest)
{
	// Readable at its beginning only: writing is all that this descriptor allows.
	char path[] = "/tmp/unreadable-XXXXXX";
	const int made = mkstemp(path);
	ASSERT_EQ(ftruncate(made, off_t{4} << 20), 0);
	close(made);
	const int fd = open(path, O_WRONLY | O_CLOEXEC);
	unlink(path);
	Arena arena;
	block_content content = {};
	content.ambiguous = BLOCK_ABSENT;
	EXPECT_EQ(probe_contents(&arena, {fd, true, 0}, &content), EBADF);
	EXPECT_EQ(content.ambiguous, BLOCK_ABSENT);
	EXPECT_EQ(content.table, nullptr);
	EXPECT_EQ(content.type, nullptr);
	close(fd);
}

} // namespace
