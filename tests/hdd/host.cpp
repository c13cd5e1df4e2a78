// SPDX-License-Identifier: Apache-2.0
// A captured host that a test builds for itself; see host.h.
#include "host.h"

#include "replay/replay.h"

#include <dirent.h>
#include <errno.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

const char *const SCSI_HEADING = "Attached devices:\n";

static fs::path made_parent(const std::string &path)
{
	fs::create_directories(fs::path(path).parent_path());
	return path;
}

Host::Host()
{
	std::string name = (fs::temp_directory_path() / "diskscout-unit-").string() + std::string(6, 'X');
	if (!mkdtemp(name.data()))
		abort();
	top_ = name;
	root_ = top_ + "/host";
	fs::create_directory(root_);
	replay_set_child_library(REPLAY_LIBRARY);
}

Host::~Host()
{
	replay_fail_call(0, 0);
	replay_log_to(nullptr);
	replay_use(nullptr);
	fs::remove_all(top_);
}

Host &Host::file(const std::string &path, std::string_view text)
{
	std::ofstream out(made_parent(root_ + path), std::ios::binary);
	out << text;
	return *this;
}

Host &Host::link(const std::string &path, const std::string &target)
{
	fs::create_symlink(target, made_parent(root_ + path));
	return *this;
}

Host &Host::directory(const std::string &path)
{
	fs::create_directories(root_ + path);
	return *this;
}

Host &Host::remove(const std::string &path)
{
	fs::remove_all(root_ + path);
	return *this;
}

Host &Host::table(std::string_view lines)
{
	table_ += lines;
	return *this;
}

void Host::show()
{
	file("/host.txt", table_);
	replay_log_to(nullptr);
	fs::remove(top_ + "/log");
	if (replay_use(root_.c_str()) != 0)
		abort();
	replay_log_to((top_ + "/log").c_str());
}

Host &Host::partitions(std::string_view lines)
{
	return file("/proc/partitions", "major minor  #blocks  name\n\n" + std::string(lines));
}

Host &Host::ide_drive(const std::string &name, const std::string &media, const std::string &model,
                      const std::string &sn, const std::string &rev)
{
	const std::string at = "/proc/ide/ide0/" + name;
	file(at + "/identify", identify(sn, rev));
	file(at + "/media", media + "\n");
	file(at + "/model", model + "\n");
	return link("/proc/ide/" + name, "ide0/" + name);
}

std::vector<std::string> Host::log() const
{
	std::ifstream in(top_ + "/log");
	std::vector<std::string> lines;
	for (std::string line; std::getline(in, line);)
		lines.push_back(line);
	return lines;
}

void HostTest::SetUp()
{
	host.show();
	descriptors_ = open_descriptors();
}

void HostTest::TearDown()
{
	replay_fail_call(0, 0);
	EXPECT_EQ(open_descriptors(), descriptors_);
	EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
	EXPECT_EQ(errno, ECHILD);
}

// The words hold their text high byte first.
std::string identify(const std::string &sn, const std::string &rev)
{
	std::string image(512, '\0');
	image.replace(20, 20, (sn + std::string(20, ' ')).substr(0, 20));
	image.replace(46, 8, (rev + std::string(8, ' ')).substr(0, 8));
	std::string text;
	for (size_t word = 0; word < 256; word++)
		text += printed("%02x%02x%s", static_cast<unsigned char>(image[2 * word]),
		                static_cast<unsigned char>(image[2 * word + 1]), word % 8 == 7 ? "\n" : " ");
	return text;
}

std::string identify_lines(int lines)
{
	return repeat("4142 4344 4546 4748 494a 4b4c 4d4e 4f50\n", lines);
}

std::string scsi_block(int id, const std::string &vendor, const std::string &model, const std::string &rev,
                       const std::string &type)
{
	return printed("Host: scsi0 Channel: 00 Id: %02d Lun: 00\n"
	               "  Vendor: %-8s Model: %-16s Rev: %-4s\n"
	               "  Type:   %-33sANSI  SCSI revision: 02\n",
	               id, vendor.c_str(), model.c_str(), rev.c_str(), type.c_str());
}

std::string repeat(std::string_view text, int times)
{
	std::string all;
	for (int i = 0; i < times; i++)
		all += text;
	return all;
}

std::string number(long value)
{
	return std::to_string(value);
}

std::vector<std::string> lines_of(const std::string &text)
{
	std::vector<std::string> lines;
	size_t at = 0;
	for (size_t end; (end = text.find('\n', at)) != std::string::npos; at = end + 1)
		lines.push_back(text.substr(at, end - at));
	if (at < text.size())
		lines.push_back(text.substr(at));
	return lines;
}

int open_descriptors()
{
	DIR *dir = opendir("/proc/self/fd");
	if (!dir)
		return -1;
	int count = 0;
	while (readdir(dir))
		count++;
	closedir(dir);
	return count;
}

int counting_filter(const void *, const void *arg)
{
	auto *calls = const_cast<filter_calls_t *>(static_cast<const filter_calls_t *>(arg));
	calls->calls++;
	return calls->answer;
}

std::string printed(const char *format, ...)
{
	char *text = nullptr;
	va_list arguments;
	va_start(arguments, format);
	const int length = vasprintf(&text, format, arguments);
	va_end(arguments);
	if (length < 0)
		abort();
	const std::string copy(text, static_cast<size_t>(length));
	free(text);
	return copy;
}

unsigned low32(const void *address)
{
	return static_cast<unsigned>(reinterpret_cast<uintptr_t>(address));
}
