// SPDX-License-Identifier: Apache-2.0
// What a worker tells, as it goes through the pipe: frames.
#include "worker_frames.h"

#include "kernel.h"
#include "worker.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>

enum frame_kind_t : std::uint64_t { STAGE, RESULT, FAILURE };

// As long as any record's alignment is, and so is what stands behind it.
struct alignas(16) frame_t {
	std::uint64_t kind;
	std::uint64_t count;
};

static std::size_t padding_behind(std::size_t count)
{
	return (alignof(frame_t) - count % alignof(frame_t)) % alignof(frame_t);
}

static void write_whole(int to, const void *bytes, std::size_t count)
{
	const char *next = static_cast<const char *>(bytes);
	while (count > 0) {
		const ssize_t written = kernel_write(to, next, count);
		if (written < 0 && errno == EINTR)
			continue;
		if (written <= 0)
			return;
		next += written;
		count -= static_cast<std::size_t>(written);
	}
}

void worker_link_t::frame(unsigned kind, const void *bytes, std::size_t count) const
{
	constexpr int LARGEST = 1 << 20;
	constexpr std::size_t LARGE = 1 << 16;
	const frame_t head = {kind, count};
	const char padding[alignof(frame_t)] = {};
	// A long answer goes over in a few pieces, then.
	if (count > LARGE)
		fcntl(to_, F_SETPIPE_SZ, LARGEST);
	write_whole(to_, &head, sizeof head);
	write_whole(to_, bytes, count);
	write_whole(to_, padding, padding_behind(count));
}

void worker_link_t::stage(std::string_view name) const
{
	frame(STAGE, name.data(), name.size());
}

void worker_link_t::result(const void *bytes, std::size_t count) const
{
	frame(RESULT, bytes, count);
}

void worker_link_t::failure(std::string_view why) const
{
	frame(FAILURE, why.data(), why.size());
}

frames_t read_frames(worked_t &worked, std::string_view first_stage)
{
	frames_t frames;
	frames.stage = first_stage;
	const std::vector<char> &bytes = worked.received;
	for (std::size_t at = 0; at + sizeof(frame_t) <= bytes.size();) {
		frame_t head;
		memcpy(&head, bytes.data() + at, sizeof head);
		at += sizeof head;
		if (head.count > bytes.size() - at)
			break;
		const std::string_view text(bytes.data() + at, head.count);
		if (head.kind == STAGE)
			frames.stage = text;
		else if (head.kind == FAILURE)
			frames.failure = text.empty() ? "no cause is told" : text;
		else {
			frames.has_result = true;
			worked.from = at;
			worked.count = head.count;
		}
		at += std::min(head.count + padding_behind(head.count), bytes.size() - at);
	}
	return frames;
}
