// SPDX-License-Identifier: Apache-2.0
#include "tablelimits.h"

#include <errno.h>
#include <string.h>
#include <unistd.h>

static constexpr size_t TABLE_BYTES = 512;
static constexpr int CHAIN_MOST = 1024;
static constexpr uint64_t GPT_MOST = uint64_t{4} << 20;

static bool read_at(const disk_t &disk, uint64_t at, unsigned char *to, size_t bytes)
{
	ssize_t got;
	if (at > static_cast<uint64_t>(INT64_MAX) - bytes)
		return false;
	do
		got = pread(disk.fd, to, bytes, static_cast<off_t>(at));
	while (got < 0 && errno == EINTR);
	return got == static_cast<ssize_t>(bytes);
}

static uint32_t little_endian(const unsigned char *bytes)
{
	return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
	       static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

// ---- chains: one of a DOS table's four slots says where the next table is ----

static constexpr size_t SLOTS = 4;

// The sector that the slot leads to, counted from where the chain begins; 0 for none.
static uint32_t link_of(const unsigned char *table, size_t slot)
{
	const unsigned char *entry = table + 446 + 16 * slot;
	const bool is_link = entry[4] == 0x05 || entry[4] == 0x0f || entry[4] == 0x85;
	const bool is_there = table[510] == 0x55 && table[511] == 0xaa && little_endian(entry + 12) != 0;
	return is_link && is_there ? little_endian(entry + 8) : 0;
}

// Takes each table of the chain off *left, until it ends or comes back to where it has been.
static bool ends_soon(const disk_t &disk, uint32_t first, int *left)
{
	unsigned char table[TABLE_BYTES];
	uint64_t at = first;
	uint64_t mark = 0;

	for (unsigned step = 1; *left > 0; step++, --*left) {
		if (at == mark || !read_at(disk, at * disk.sector, table, sizeof table))
			return true;
		// The mark moves on at powers of two: sooner or later it lies on the circle.
		if ((step & (step - 1)) == 0)
			mark = at;
		size_t slot = 0;
		while (slot < SLOTS && link_of(table, slot) == 0)
			slot++;
		if (slot == SLOTS)
			return true;
		at = uint64_t{first} + link_of(table, slot);
	}
	return false;
}

static bool are_chains_short(const disk_t &disk, const unsigned char *table)
{
	int left = CHAIN_MOST;
	for (size_t slot = 0; slot < SLOTS; slot++)
		if (link_of(table, slot) != 0 && !ends_soon(disk, link_of(table, slot), &left))
			return false;
	return true;
}

// ---- GUID partition tables: a header at each end of the disk ----

static bool is_gpt_short(const disk_t &disk, uint64_t at)
{
	unsigned char header[92];
	if (!read_at(disk, at, header, sizeof header) || memcmp(header, "EFI PART", 8) != 0)
		return true;
	return uint64_t{little_endian(header + 80)} * little_endian(header + 84) <= GPT_MOST;
}

bool is_table_short(const disk_t &disk)
{
	unsigned char first[TABLE_BYTES];
	if (disk.size < static_cast<int64_t>(TABLE_BYTES) || disk.sector == 0 ||
	    !read_at(disk, 0, first, sizeof first))
		return true;
	const uint64_t sectors = static_cast<uint64_t>(disk.size) / disk.sector;
	return are_chains_short(disk, first) && is_gpt_short(disk, disk.sector) &&
	       (sectors < 2 || is_gpt_short(disk, (sectors - 1) * disk.sector));
}
