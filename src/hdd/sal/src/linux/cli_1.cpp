// SPDX-License-Identifier: Apache-2.0
// The commands that look at one device, or at one path.
#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/cli.h"
#include "hdd/sal/src/linux/devio.h"
#include "hdd/sal/src/linux/parttab.h"
#include "hdd/sal/src/linux/xxid.h"

static int cmd_hdgeo(char *const *words)
{
	const Descriptor device(words[1]);
	hdgeo_t geo = {};
	const int result = device.is_open() ? get_device_geometry(device.fd(), &geo) : -1;
	fprintf(stderr, "CHS(%u, %u, %u, %u)\n", static_cast<unsigned>(geo.cylinders),
	        static_cast<unsigned>(geo.heads), static_cast<unsigned>(geo.sectors),
	        static_cast<unsigned>(geo.bytes));
	return result;
}

static int cmd_hdsize(char *const *words)
{
	const Descriptor device(words[1]);
	unsigned long size = 0;
	const int result = device.is_open() ? get_device_size(device.fd(), &size) : -1;
	fprintf(stderr, "%d\n", low_32(size));
	fprintf(stderr, "%d %c\n", low_32(size / 2), size % 2 != 0 ? '+' : ' ');
	fprintf(stderr, "%d %s\n", low_32(size >> 11), "MB");
	fprintf(stderr, "%d %s\n", low_32(size >> 21), "GB");
	return result;
}

static int cmd_idlun(char *const *words)
{
	const Descriptor device(words[1]);
	idlun_t idlun;
	if (!device.is_open() || get_device_idlun(device.fd(), &idlun) != 0)
		return -1;
	fprintf(stderr, "IDLUN(%d, %d, %d, %d)\n", idlun.host, idlun.channel, idlun.id, idlun.lun);
	return 0;
}

// ---- sectors ----

static int read_sector(const char *path, unsigned long sector, void *buffer)
{
	const Descriptor device(path);
	if (!device.is_open() || fdseeks(device.fd(), sector) != 0)
		return -1;
	return fdread_buf(device.fd(), buffer, SECTOR_SIZE);
}

static int show_parttab(const char *path, unsigned long sector)
{
	parttab_t table;
	static_assert(sizeof table == SECTOR_SIZE, "as on disk");
	if (read_sector(path, sector, &table) != 0)
		return -1;

	fprintf(stderr, "partition table of %s, sector %lu\n", path, sector);
	fprintf(stderr, "magic = 0x%02x, 0x%02x\n", table.magic[0], table.magic[1]);
	for (int i = 0; i < 4; i++) {
		const parttab_item_t &item = table.item[i];
		fprintf(stderr, "%d ", i);
		fprintf(stderr, "active=0x%02X type=0x%02X start=%u(%d,%d,%d) end=(%d,%d,%d) size=%u\n",
		        item.active, item.type, item.start_sector, item.start_c, item.start_h, item.start_s,
		        item.end_c, item.end_h, item.end_s, item.size_sector);
	}
	return 0;
}

static int word_to_sector(const char *word, unsigned long *sector)
{
	int64_t number;
	if (word_to_int64(word, &number) != 0 || number < 0)
		return -1;
	*sector = static_cast<unsigned long>(number);
	return 0;
}

static int cmd_mbr(char *const *words)
{
	return show_parttab(words[1], 0);
}

static int cmd_parttab(char *const *words)
{
	unsigned long sector;
	return word_to_sector(words[2], &sector) == 0 ? show_parttab(words[1], sector) : -1;
}

static void dump_row(unsigned position, const uint8_t *bytes)
{
	constexpr int ROW = 16;
	constexpr int GROUP = 4;
	fprintf(stderr, "0x%04x ", position);
	for (int i = 0; i < ROW; i++)
		fprintf(stderr, "%s %02X", i % GROUP == 0 ? "  " : "", bytes[i]);
	fputs("\n", stderr);
}

static int cmd_sector(char *const *words)
{
	unsigned long sector;
	uint8_t bytes[SECTOR_SIZE];
	if (word_to_sector(words[2], &sector) != 0 || read_sector(words[1], sector, bytes) != 0)
		return -1;
	for (unsigned position = 0; position < SECTOR_SIZE; position += 16)
		dump_row(position, bytes + position);
	return 0;
}

static int cmd_part(char *const *words)
{
	partlist_t list;
	const int result = read_disk_partlist(words[1], &list);
	dump_list_head(&list);
	for (const part_t &part : live_items(list)) {
		dump_item_head(part);
		fprintf(stderr, "index=%d type=%02x active=%d (start,size)=(%d,%d)\n", part.part_index,
		        part.type, part.active, low_32(part.start), low_32(part.size));
	}
	return result;
}

// ---- paths ----

static int cmd_volspace(char *const *words)
{
	volspace_t space;
	if (get_volspace(words[1], &space) != 0)
		return -1;
	fprintf(stderr, "(free/total)s\n (%d/%d)\n (%d/%d)KB\n (%d/%d)MB\n (%d/%d)GB\n", low_32(space.free),
	        low_32(space.total), low_32(space.free >> 1), low_32(space.total >> 1),
	        low_32(space.free >> 11), low_32(space.total >> 11), low_32(space.free >> 21),
	        low_32(space.total >> 21));
	return 0;
}

static int cmd_xxid(char *const *)
{
	unsigned char id[16];
	str_t text;
	xxid_generate(id);
	xxid_unparse(id, text);
	fprintf(stderr, "%s\n", text);
	return 0;
}

static const command_t COMMANDS[] = {
	{"hdgeo", "", 2, cmd_hdgeo},   {"hdsize", "", 2, cmd_hdsize},     {"idlun", "", 2, cmd_idlun},
	{"mbr", "", 2, cmd_mbr},       {"part", "", 2, cmd_part},         {"parttab", "", 3, cmd_parttab},
	{"sector", "", 3, cmd_sector}, {"volspace", "", 2, cmd_volspace}, {"xxid", "", 1, cmd_xxid},
};

int cli_1(int argc, char **argv, int start, int *matched)
{
	return run_leaf("cli_1", COMMANDS, argc, argv, start, matched);
}
