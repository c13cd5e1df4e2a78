// SPDX-License-Identifier: Apache-2.0
// The command line and the console, on a host with a little of everything and without a controller tool.
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "diskscout.h"
#include "hdd/sal/src/0/cli.h"
#include "hwraid/aac_mycli/aac_input.h"
#include "hwraid/aacraid/aac_public.h"

#include <functional>
#include <mutex>
#include <sstream>
#include <vector>

namespace
{

const char TABLE[] = "device /dev/hda\n"
		     "\tBLKGETSIZE 524288\n"
		     "\tHDIO_GETGEO 16 63 520\n"
		     "\ttable 0\n"
		     "\t\tentry 80 83 63 262017\n"
		     "\t\tentry 00 05 294848 229440\n"
		     "\ttable 294848\n"
		     "\t\tentry 00 83 63 65536\n"
		     "device /dev/sda\n"
		     "\tBLKGETSIZE 131072\n"
		     "\tSCSI_IOCTL_GET_IDLUN 0x01020304\n"
		     "\tSCSI_IOCTL_SEND_COMMAND 00 80 00 04 41 42 43 44\n"
		     "mount / 1024 117123 114000\n";

void fill(const Host &host)
{
	host.file("proc/partitions", "major minor  #blocks  name\n\n   3 0 262144 hda\n   3 1 131008 "
	                             "hda1\n   8 0 65536 sda\n");
	host.file("proc/uptime", "350.25 1200.00\n");
	host.file("proc/mdstat", "md0 : active raid1 sdb1[1] sda1[0]\n  1024 blocks [2/2] [UU]\n\n");
	host.file("proc/sys/dev/raid/speed_limit_min", "100\n");
	host.file("proc/sys/dev/raid/speed_limit_max", "100000\n");
	host.file("proc/scsi/scsi", "Attached devices:\n"
	                            "Host: scsi1 Channel: 02 Id: 03 Lun: 04\n"
	                            "  Vendor: ACME     Model: DISK             Rev: 1.0 \n"
	                            "  Type:   Direct-Access                    ANSI SCSI revision: 02\n");
	host.file("etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
	host.file("proc/raidtab", "raiddev /dev/md0\nraid-level 1\nnr-raid-disks 2\n"
	                          "device /dev/sda1\nraid-disk 0\ndevice /dev/sdb1\nraid-disk 1\n");
}

const Host &full_host()
{
	static const Host host("commands", TABLE);
	static std::once_flag filled;
	std::call_once(filled, fill, std::cref(host));
	return host;
}

std::vector<std::string> words_of(const std::string &line)
{
	std::vector<std::string> words = {"stcli"};
	std::istringstream stream(line);
	for (std::string word; std::getline(stream, word, ' ');)
		words.push_back(word.c_str()); // a word ends at a NUL
	return words;
}

// Some commands wait between their rounds, of which there may be billions; some files have no end.
bool takes_forever(const std::vector<std::string> &words)
{
	int rounds = 0;
	if (words.size() > 2 && words[1] == "sttest" && word_to_int(words[2].c_str(), &rounds) == 0 &&
	    rounds > 2)
		return true;
	for (const std::string &word : words)
		for (const char *endless : {"zero", "full", "random", "tty", "ptmx", "stdin", "fd/"})
			if (word.find(endless) != std::string::npos)
				return true;
	return false;
}

} // namespace

// The words stay as they are, and nothing stays open.
std::string check_commands(const char *path)
{
	const std::string text = content_of(path);
	const size_t end = text.find('\n');
	const std::vector<std::string> words = words_of(text.substr(0, end));
	if (takes_forever(words))
		return "";
	std::vector<std::string> copies = words;
	std::vector<char *> argv;
	argv.reserve(copies.size() + 1);
	for (std::string &word : copies)
		argv.push_back(word.data());
	argv.push_back(nullptr);

	const Visit visit(full_host());
	const Typed typed(end == std::string::npos ? "" : text.substr(end + 1));
	use_no_tool();
	const int descriptor = free_descriptor();
	const int records = memory_counter_hdd;
	int result = 0;
	int status = 0;
	if (ends_process([&] { result = stcli(static_cast<int>(words.size()), argv.data(), 1); }, &status) &&
	    status != -1)
		return "status " + std::to_string(status);
	return broken({
		{result == 0 || result == -1, "result"},
		{copies == words, "words"},
		{free_descriptor() == descriptor, "descriptors"},
		{memory_counter_hdd == records || words[1] == "sttest", "records"},
	});
}

// Every question is answered within its limits, or the input has ended.
static std::string wrong_answers()
{
	StartInput();
	int address = 0;
	while (!InputEnded()) {
		int number = -7;
		if (AskNumber(3, 12, "", &number) ? !is_between(number, 3, 12) : number != -1)
			return "number";
		char text[8];
		memset(text, 'x', sizeof text);
		if (AskText("", text, sizeof text) ? !ends(text) || strchr(text, '\n') : text[0] != '\0')
			return "text";
		if (AskDisk("", &address) && !(is_between(GetChannelFromC_ID_L(address), 0, 9) &&
		                               is_between(GetIDFromC_ID_L(address), 0, 99) &&
		                               is_between(GetLunFromC_ID_L(address), 0, 9)))
			return "address";
	}
	return "";
}

std::string check_console(const char *path)
{
	const std::string text = content_of(path);
	char program[] = "stcli";
	char word[] = "hwraid";
	char *argv[] = {program, word, nullptr};
	const Visit visit(full_host());
	use_no_tool();
	const Typed session(text);
	const int descriptor = free_descriptor();
	const int result = stcli(2, argv, 1);
	const Typed answers(text);
	std::string wrong = wrong_answers();
	if (!wrong.empty())
		return wrong;
	return broken({
		{result == 0, "result"},
		{free_descriptor() == descriptor, "descriptors"},
	});
}
