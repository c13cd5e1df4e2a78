// SPDX-License-Identifier: Apache-2.0
// What is on a disk of any content.
#include "block.h"
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "probe.h"
#include "record.h"

#include <endian.h>
#include <errno.h>
#include <stdlib.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

constexpr size_t PIECE = 128;
constexpr uint64_t MOST = uint64_t{1} << 40;

template <class Number> Number take(std::string_view *from)
{
	Number number = 0;
	memcpy(&number, from->data(), std::min(from->size(), sizeof number));
	from->remove_prefix(std::min(from->size(), sizeof number));
	return number;
}

// Negative numbers count from the end: -1 is the last piece.
off_t place_of(int32_t number, uint64_t sectors)
{
	const uint64_t from_end = static_cast<uint64_t>(-1 - static_cast<int64_t>(number)) % sectors;
	const uint64_t sector =
		number >= 0 ? static_cast<uint64_t>(number) % sectors : sectors - 1 - from_end;
	return static_cast<off_t>(sector * PIECE);
}

// A descriptor of the disk.
int disk_of(std::string_view content)
{
	const int fd = memfd_create("disk", MFD_CLOEXEC);
	const uint64_t size = le64toh(take<uint64_t>(&content)) % MOST;
	if (fd < 0 || ftruncate(fd, static_cast<off_t>(size)) != 0)
		abort();
	while (size >= PIECE && !content.empty()) {
		const auto number = static_cast<int32_t>(le32toh(take<uint32_t>(&content)));
		const std::string_view bytes = content.substr(0, PIECE);
		if (pwrite(fd, bytes.data(), bytes.size(), place_of(number, size / PIECE)) < 0)
			abort();
		content.remove_prefix(bytes.size());
	}
	return fd;
}

bool are_sound(const block_partition *first)
{
	for (const block_partition *at = first; at; at = at->next)
		if (at->number < 1 || at->start < BLOCK_ABSENT || at->size < BLOCK_ABSENT || at->name ||
		    !is_shown(at->type) || !is_shown(at->uuid) || !is_shown(at->label))
			return false;
	return true;
}

bool has_nothing(const block_content &content)
{
	return !content.table && !content.table_id && !content.partitions && !content.usage &&
	       !content.type && !content.label && !content.uuid && !content.uuid_sub && !content.version;
}

std::string broken_by(int error, const block_content &content)
{
	bool shown = true;
	for (const char *text : {content.table, content.table_id, content.usage, content.type, content.label,
	                         content.uuid, content.uuid_sub, content.version})
		shown = shown && is_shown(text);
	return broken({
		{error == 0 || error == EFBIG, "an error that a file in memory does not have"},
		{error == 0 || (has_nothing(content) && content.ambiguous == BLOCK_ABSENT), "half told"},
		{error != 0 || is_between(content.ambiguous, 0, 1), "ambiguous"},
		{content.ambiguous != 1 || (!content.type && !content.usage), "one of several kinds"},
		{content.table || (!content.table_id && !content.partitions), "parts of no table"},
		{shown, "text"},
		{are_sound(content.partitions), "partition"},
	});
}

} // namespace

std::string check_image(const char *path)
{
	const int fd = disk_of(content_of(path));
	const int descriptor = free_descriptor();
	std::string wrong;
	// As a disk and as a partition.
	for (const bool whole : {true, false}) {
		Arena arena;
		void *list = nullptr;
		int length = 0;
		block_content content = {};
		content.record_size = sizeof content;
		content.ambiguous = BLOCK_ABSENT;
		wrong += broken_by(probe_contents(&arena, {fd, whole, 0}, &content), content);
		if (hand_out(CONTENT_LAYOUT, &content, &list, &length) != 0 || length != 1)
			wrong += "not handed out";
		release_list(&list);
	}
	if (free_descriptor() != descriptor || memory_counter_block != 0)
		wrong += "something is left";
	close(fd);
	return wrong;
}
