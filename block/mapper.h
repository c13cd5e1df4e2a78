// SPDX-License-Identifier: Apache-2.0
// Device mapper: what a mapping is called, what it is for, what it is made of.
#ifndef DISKSCOUT_BLOCK_MAPPER_H
#define DISKSCOUT_BLOCK_MAPPER_H

#include "inventory.h"

// The control node, opened when the first mapping asks for its table; no mapping is opened.
class MapperControl
{
public:
	MapperControl() = default;
	MapperControl(const MapperControl &) = delete;
	MapperControl &operator=(const MapperControl &) = delete;
	~MapperControl();

	// The kinds of targets in the table, each once, in its order: "linear,striped". Null without
	// permission.
	const char *targets(Arena *arena, int major_number, int minor_number);

private:
	static constexpr int UNTRIED = -2;
	int fd_ = UNTRIED;
};

// Fills what a dm device's open folder tells, and its targets.
void read_mapping(Arena *arena, const Folder &folder, MapperControl *control, device_t *device);
// The uuid alone: what tells a path from a member.
void read_mapping_uuid(Arena *arena, const Folder &folder, device_t *device);

#endif
