// SPDX-License-Identifier: Apache-2.0
// /proc/partitions, one line a block device under a heading and a blank line:
//
//   major minor  #blocks  name
//
//      8        0     262144 sda
//      8        1     131008 sda1
//
// Blocks are of 1024 bytes.
#include "hdd/sal/src/linux/procblk.h"

#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"

#include <string.h>

// Longest name that a line is taken to hold; what stands behind it is ignored.
constexpr size_t NAME_LIMIT = 63;

static int parse_procblk_line(const char *line, procblk_dev_t *dev)
{
	std::string_view text(line);
	int64_t major;
	int64_t minor;
	int64_t blocks;
	std::string_view word;
	if (!str_next_int(&text, &major) || !str_next_int(&text, &minor) || !str_next_int(&text, &blocks) ||
	    !str_next_word(&text, &word))
		return -1;

	if (word.size() > NAME_LIMIT)
		word.remove_suffix(word.size() - NAME_LIMIT);
	const devname_t name = split_devname(word);
	str_refill(dev->name, name.stem);
	dev->part = name.number == -1 ? 0 : name.number;
	// compat: eight bits of each number are kept; the minor number 256 is told as 0.
	dev->mami = make_mami(static_cast<unsigned>(major), static_cast<unsigned>(minor));
	dev->size = static_cast<size32_t>(static_cast<uint32_t>(blocks)) * 2;
	return 0;
}

ProcblkTable::ProcblkTable() : table_(fsopen_ro(PPROCBLK_PATH))
{
	if (!table_)
		return;
	line_t line;
	fsread_line(table_.get(), line); // headings
	fsread_line(table_.get(), line); // the blank line below them
}

bool ProcblkTable::next(procblk_dev_t *dev)
{
	line_t line;
	while (table_ && fsread_line(table_.get(), line) == 0) {
		if (parse_procblk_line(line, dev) == 0)
			return true;
		has_bad_line_ = true;
	}
	return false;
}

int ProcblkTable::result() const
{
	return !table_ || table_.failed() || has_bad_line_ ? -1 : 0;
}

int parse_procblk_devlist(procblk_devlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	ProcblkTable table;
	return list_fill(list, &table, filter, arg);
}

int filter_procblk_is_disk(const void *item, const void *)
{
	const auto *dev = static_cast<const procblk_dev_t *>(item);
	const devname_t name = split_devname(dev->name);
	return dev->part == 0 && (is_ide_name(name) || is_scsi_name(name));
}

int filter_procblk_is_part(const void *item, const void *arg)
{
	const auto *dev = static_cast<const procblk_dev_t *>(item);
	const devname_t disk = split_devname(static_cast<const char *>(arg));
	return dev->part != 0 && dev->name == disk.stem;
}

void display_procblk_devlist(const procblk_devlist_t *list)
{
	dump_list_head(list);
	for (const procblk_dev_t &dev : live_items(*list)) {
		dump_item_head(dev);
		fprintf(stderr, "%s %d (%d:%d)\t%9d ", dev.name, dev.part,
		        static_cast<int>(mami_major(dev.mami)), static_cast<int>(mami_minor(dev.mami)),
		        low_32(dev.size));
		for (const unsigned int counter : dev.io)
			fprintf(stderr, " %d", low_32(counter));
		fputs("\n", stderr);
	}
}
