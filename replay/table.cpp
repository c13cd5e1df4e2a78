// SPDX-License-Identifier: Apache-2.0
// Loads a captured host, DIR/host.txt, and finds things in it.
//
// Every fault is told with its file and line and refuses the whole host: a test on a host that is not what
// its author wrote proves nothing.
#include "replay/table.h"

#include "replay/directives.h"
#include "replay/paths.h"
#include "replay/real.h"

#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace replay
{

answer_t size_answer(const device_t &dev, answer_kind_t kind)
{
	const bool in_bytes = kind == BLKGETSIZE64_ANSWER;
	if (dev.answers[kind].given)
		return dev.answers[kind];
	answer_t size = dev.answers[in_bytes ? BLKGETSIZE_ANSWER : BLKGETSIZE64_ANSWER];
	if (!in_bytes)
		size.value[0] /= SECTOR_BYTES;
	else if (__builtin_mul_overflow(size.value[0], SECTOR_BYTES, &size.value[0]))
		size.value[0] = UINT64_MAX;
	return size;
}

bool content_end(const device_t &dev, uint64_t *sectors)
{
	const answer_t size = size_answer(dev, BLKGETSIZE_ANSWER);
	if (!dev.has_end && (!size.given || size.error != 0))
		return false;
	*sectors = dev.has_end ? dev.end : size.value[0];
	if (*sectors > CONTENT_SECTORS_MAX)
		*sectors = CONTENT_SECTORS_MAX;
	return true;
}

bool image_path(const host_table_t &table, const char *name, char (&out)[PATH_MAX])
{
	char head[PATH_MAX];
	return join(head, table.directory, "/") && join(out, head, name);
}

static bool read_lines(reading_t &in, char *text, size_t length)
{
	if (memchr(text, '\0', length) != nullptr)
		return fault(in, "the file holds a NUL byte");
	while (*text != '\0') {
		char *end = text + strcspn(text, "\n");
		char *next = *end == '\0' ? end : end + 1;
		*end = '\0';
		++in.line;
		if (!read_line(in, text))
			return false;
		text = next;
	}
	return end_device(in) && end_table(in);
}

// The whole file in the arena, NUL-terminated; the records point into it.
static char *read_file(arena_t *memory, const char *path, size_t *length)
{
	struct stat st = {};
	const int fd = REPLAY_REAL(open)(path, O_RDONLY | O_CLOEXEC);
	if (fd < 0)
		return nullptr;
	char *text = nullptr;
	if (REPLAY_REAL(fstat)(fd, &st) == 0 && S_ISREG(st.st_mode))
		text = static_cast<char *>(memory->take(static_cast<size_t>(st.st_size) + 1));
	if (text) {
		*length = static_cast<size_t>(st.st_size);
		if (REPLAY_REAL(read)(fd, text, *length) != static_cast<ssize_t>(*length))
			text = nullptr;
	}
	REPLAY_REAL(close)(fd);
	return text;
}

host_table_t *load_table(const char *directory, arena_t *memory)
{
	char file[PATH_MAX];
	size_t length = 0;
	host_table_t *table = static_cast<host_table_t *>(memory->take(sizeof(host_table_t)));

	if (!join(file, directory, "/host.txt") || !table)
		return nullptr;
	reading_t in = {file, 0, memory, table, nullptr, nullptr, nullptr};
	char *text = nullptr;
	if (REPLAY_REAL(realpath)(directory, table->directory) != nullptr)
		text = read_file(memory, file, &length);
	if (!text) {
		fault(in, "a captured host has this file, and it cannot be read");
		return nullptr;
	}
	return read_lines(in, text, length) ? table : nullptr;
}

device_t *find_device(host_table_t *table, const char *path)
{
	return table->devices.find(path);
}

const mount_t *find_mount(const host_table_t *table, const char *path)
{
	return table->mounts.find(path);
}

bool is_covered(const host_table_t *table, const char *plain)
{
	if (is_never_shown(plain))
		return false;
	for (const cover_t *at = table->covers; at; at = at->next) {
		if (lies_in(plain, at->path))
			return true;
	}
	return false;
}

} // namespace replay
