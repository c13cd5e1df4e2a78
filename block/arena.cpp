// SPDX-License-Identifier: Apache-2.0
#include "arena.h"

#include <stdlib.h>
#include <string.h>

static constexpr size_t CHUNK_BYTES = size_t{64} << 10;
static constexpr size_t ALIGNMENT = alignof(max_align_t);

static constexpr size_t aligned(size_t bytes)
{
	return (bytes + ALIGNMENT - 1) & ~(ALIGNMENT - 1);
}

Arena::~Arena()
{
	while (chunks_) {
		chunk_t *next = chunks_->next;
		free(chunks_);
		chunks_ = next;
	}
}

void *Arena::take(size_t bytes)
{
	constexpr size_t HEAD = aligned(sizeof(chunk_t));
	if (exhausted_ || bytes > SIZE_MAX_ / 2)
		return give_up();
	const size_t wanted = aligned(bytes);
	if (wanted > left_) {
		const size_t room = wanted > CHUNK_BYTES - HEAD ? wanted : CHUNK_BYTES - HEAD;
		auto *chunk = static_cast<chunk_t *>(malloc(HEAD + room));
		if (!chunk)
			return give_up();
		chunk->next = chunks_;
		chunks_ = chunk;
		free_ = reinterpret_cast<char *>(chunk) + HEAD;
		left_ = room;
	}
	void *taken = free_;
	free_ += wanted;
	left_ -= wanted;
	return memset(taken, 0, wanted);
}

char *Arena::copy(std::string_view text)
{
	auto *to = static_cast<char *>(take(text.size() + 1));
	if (to && !text.empty())
		memcpy(to, text.data(), text.size());
	return to;
}
