// SPDX-License-Identifier: Apache-2.0
// The kernel's SCSI registry.
//
// Host adapters: a directory a driver, in it an entry a host, named by the host's number:
//
//   /proc/scsi/sym53c8xx/0
//
// Devices: /proc/scsi/scsi, three lines a device under a heading:
//
//   Attached devices:
//   Host: scsi0 Channel: 00 Id: 01 Lun: 00
//     Vendor: ACME     Model: EXAMPLE DISK     Rev: 1.02
//     Type:   Direct-Access                    ANSI  SCSI revision: 02
//
// The columns are the kernel's. A line that lacks a label fails its block and no other.
#include "hdd/sal/src/linux/procscsi.h"

#include "hdd/sal/src/0/dir.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>

static bool is_directory(const char *path)
{
	struct stat status;
	return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// Adds the hosts of one driver.
static int take_driver(procscsi_hostlist_t *list, filter_func_t filter, void *arg, const char *path,
                       const char *driver)
{
	const Listing entries(path);
	if (!entries.is_read())
		return -1;

	int result = 0;
	for (int i = 0; i < entries.count(); i++) {
		procscsi_host_t host = {};
		host.hostindex = str_digits(str_cut(entries.name(i)));
		if (host.hostindex < 0)
			continue;
		str_copy(host.hostname, driver);
		if (keeps(filter, &host, arg) && list_add(list, host.hostindex, host) != 0)
			result = -1;
	}
	return result;
}

int parse_procscsi_hostlist(procscsi_hostlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	const Listing drivers(PPROCSCSI_PATH);
	if (!drivers.is_read())
		return -1;

	int result = 0;
	for (int i = 0; i < drivers.count(); i++) {
		const std::string_view name = drivers.name(i);
		fname_t path;
		if (name == "." || name == ".." || fn_join(path, PPROCSCSI_PATH, drivers.name(i)) != 0 ||
		    !is_directory(path))
			continue;
		if (take_driver(list, filter, arg, path, drivers.name(i)) != 0)
			result = -1;
	}
	return result;
}

constexpr int HOST_LINE_WORDS = 8;

// Splits a line into its first eight words. False when it has fewer.
static bool split_host_line(std::string_view line, std::string_view (&words)[HOST_LINE_WORDS])
{
	for (std::string_view &word : words)
		if (!str_next_word(&line, &word))
			return false;
	return true;
}

// Host: scsi0 Channel: 00 Id: 01 Lun: 00
static int parse_host_line(const std::string_view (&words)[HOST_LINE_WORDS], idlun_t *idlun)
{
	static constexpr std::string_view LABELS[] = {"Host:", "Channel:", "Id:", "Lun:"};
	static constexpr std::string_view HOST_PREFIX = "scsi";
	uint8_t *const fields[] = {&idlun->host, &idlun->channel, &idlun->id, &idlun->lun};
	for (int i = 0; i < 4; i++) {
		std::string_view number = words[2 * i + 1];
		if (i == 0 && !str_begins(number, HOST_PREFIX))
			return -1;
		number.remove_prefix(i == 0 ? HOST_PREFIX.size() : 0);
		const int value = str_digits(number);
		if (words[2 * i] != LABELS[i] || value < 0 || value == INT_MAX)
			return -1;
		// compat: eight bits of each number are kept; host 256 is told as host 0.
		*fields[i] = static_cast<uint8_t>(value);
	}
	return 0;
}

//   Vendor: ACME     Model: EXAMPLE DISK     Rev: 1.02
static int parse_identity_line(std::string_view line, procscsi_dev_t *dev)
{
	if (!str_begins(line, "  Vendor: ") || !str_begins(str_columns(line, 19), "Model: ") ||
	    !str_begins(str_columns(line, 43), "Rev: "))
		return -1;
	str_copy(dev->vendor, str_trim(str_columns(line, 10, 8)));
	str_copy(dev->model, str_trim(str_columns(line, 26, 16)));
	str_copy(dev->rev, str_cut_strip(str_columns(line, 48, 10)));
	return 0;
}

//   Type:   Direct-Access                    ANSI  SCSI revision: 02
static int parse_type_line(std::string_view line, procscsi_dev_t *dev)
{
	if (!str_begins(line, "  Type:   "))
		return -1;
	str_copy(dev->media, str_cut_strip(str_columns(line, 10, 32)));
	return 0;
}

// A line of somebody else's need not end in a NUL.
static std::string_view line_text(const line_t line)
{
	return std::string_view(line, strnlen(line, LINE_SIZE));
}

int parse_procscsi_dev(procscsi_dev_t *dev, filter_func_t filter, void *arg, char lines[3][LINE_SIZE])
{
	b0(dev, sizeof *dev);
	std::string_view words[HOST_LINE_WORDS];
	if (!split_host_line(line_text(lines[0]), words))
		return 0;
	procscsi_dev_t candidate = {};
	if (parse_host_line(words, &candidate.idlun) != 0 ||
	    parse_identity_line(line_text(lines[1]), &candidate) != 0 ||
	    parse_type_line(line_text(lines[2]), &candidate) != 0)
		return -1;
	if (!keeps(filter, &candidate, arg))
		return 0;
	candidate.tag = 1;
	*dev = candidate;
	return 0;
}

static bool starts_block(const char *line)
{
	std::string_view words[HOST_LINE_WORDS];
	return split_host_line(line, words) && words[0] == "Host:";
}

int parse_procscsi_devlist(procscsi_devlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	const Stream table(fsopen_ro(PPROCSCSISCSI_PATH));
	if (!table)
		return -1;

	int result = 0;
	line_t lines[3];
	while (fsread_line(table.get(), lines[0]) == 0) {
		if (!starts_block(lines[0]))
			continue;
		// At the end of the file these come out empty, and the block is malformed.
		fsread_line(table.get(), lines[1]);
		fsread_line(table.get(), lines[2]);
		procscsi_dev_t dev;
		if (parse_procscsi_dev(&dev, filter, arg, lines) != 0 ||
		    (dev.tag != 0 && list_add(list, list->num, dev) != 0))
			result = -1;
	}
	return table.failed() ? -1 : result;
}

static int command_registry(const char *verb, const idlun_t *idlun)
{
	cmd_t command;
	snprintf(command, sizeof command, "scsi %s-single-device %d %d %d %d", verb, idlun->host,
	         idlun->channel, idlun->id, idlun->lun);
	return fswrite_text_by_path(PPROCSCSISCSI_PATH, command);
}

int procscsi_dev_add(const idlun_t *idlun)
{
	return command_registry("add", idlun);
}

int procscsi_dev_remove(const idlun_t *idlun)
{
	return command_registry("remove", idlun);
}

static int random_slot(const procscsi_devlist_t &list)
{
	return static_cast<int>(rand() * 0x1p-31 * list.lmt);
}

static void swap_slots(procscsi_devlist_t *list)
{
	const int rounds = 17 * list->lmt;
	for (int round = 0; round < rounds;) {
		const int a = random_slot(*list);
		const int b = random_slot(*list);
		if (a == b)
			continue;
		const procscsi_dev_t dev = list->item[a];
		list->item[a] = list->item[b];
		list->item[b] = dev;
		list_renumber(list);
		round++;
	}
}

void scsi_shuffle(const procscsi_devlist_t *list)
{
	procscsi_devlist_t devices;
	if (list)
		devices = *list;
	else
		parse_procscsi_devlist(&devices, nullptr, nullptr);
	// Drawing two different slots never ends in a list of fewer than two.
	devices.lmt = list_capacity<procscsi_devlist_t>();
	list_renumber(&devices);

	for (const procscsi_dev_t &dev : live_items(devices))
		procscsi_dev_remove(&dev.idlun);
	srand(static_cast<unsigned>(time(nullptr)));
	swap_slots(&devices);
	for (const procscsi_dev_t &dev : live_items(devices))
		procscsi_dev_add(&dev.idlun);
}

void display_procscsi_hostlist(const procscsi_hostlist_t *list)
{
	dump_list_head(list);
	// compat: ends at the first gap, unlike the other dumps: hosts 0 and 2 show host 0 alone.
	for (const procscsi_host_t &host : list->item) {
		if (host.tag == 0)
			break;
		dump_item_head(host);
		fprintf(stderr, "%d %s\n", host.hostindex, host.hostname);
	}
}

void display_procscsi_devlist(const procscsi_devlist_t *list)
{
	dump_list_head(list);
	for (const procscsi_dev_t &dev : live_items(*list)) {
		dump_item_head(dev);
		fprintf(stderr, "(%d, %d, %d, %d) %s %s %s %s\n", dev.idlun.host, dev.idlun.channel,
		        dev.idlun.id, dev.idlun.lun, dev.vendor, dev.model, dev.rev, dev.media);
	}
}
