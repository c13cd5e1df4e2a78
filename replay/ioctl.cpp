// SPDX-License-Identifier: Apache-2.0
// The requests a captured device answers.
//
// What it answers is in its table; a request that is not there fails as one the driver does not know.
#include "replay/device.h"

#include <errno.h>
#include <linux/blkzoned.h>
#include <linux/cdrom.h>
#include <linux/fs.h>
#include <linux/hdreg.h>
#include <scsi/scsi_ioctl.h>
#include <string.h>

// The C library's header leaves this one out.
#ifndef SCSI_IOCTL_GET_IDLUN
#define SCSI_IOCTL_GET_IDLUN 0x5382
#endif

namespace replay
{

// Of a value that the caller keeps in fewer bytes the low ones come first on this machine.
template <class Number> static int give_number(const answer_t &from, void *argument)
{
	const Number number = static_cast<Number>(from.value[0]);
	memcpy(argument, &number, sizeof number);
	return 0;
}

// The call itself returns it, and takes no place to put it.
static int return_number(const answer_t &from, void * /*argument*/)
{
	return static_cast<int>(from.value[0]);
}

static int give_geometry(const answer_t &from, void *argument)
{
	struct hd_geometry geometry = {};
	geometry.heads = static_cast<unsigned char>(from.value[0]);
	geometry.sectors = static_cast<unsigned char>(from.value[1]);
	geometry.cylinders = static_cast<unsigned short>(from.value[2]);
	geometry.start = from.value[3];
	memcpy(argument, &geometry, sizeof geometry);
	return 0;
}

static int give_address(const answer_t &from, void *argument)
{
	const uint32_t words[2] = {static_cast<uint32_t>(from.value[0]),
	                           static_cast<uint32_t>(from.value[1])};
	memcpy(argument, words, sizeof words);
	return 0;
}

// The caller's buffer: two lengths, then the command, which the reply overwrites. On success the kernel
// writes the whole output length, on another status the sense data alone.
static int give_reply(const answer_t &from, void *argument)
{
	uint32_t room = 0;
	unsigned char *reply = static_cast<unsigned char *>(argument) + 2 * sizeof(uint32_t);
	memcpy(&room, static_cast<unsigned char *>(argument) + sizeof(uint32_t), sizeof room);
	const uint32_t given = from.reply_bytes < room ? from.reply_bytes : room;
	memcpy(reply, from.reply, given);
	if (from.result == 0)
		memset(reply + given, 0, room - given);
	return from.result;
}

static const struct {
	unsigned long request;
	answer_kind_t kind;
	int (*give)(const answer_t &from, void *argument);
} REQUESTS[] = {
	{BLKGETSIZE, BLKGETSIZE_ANSWER, give_number<uint64_t>},
	{BLKGETSIZE64, BLKGETSIZE64_ANSWER, give_number<uint64_t>},
	{BLKSSZGET, BLKSSZGET_ANSWER, give_number<uint32_t>},
	{BLKPBSZGET, BLKPBSZGET_ANSWER, give_number<uint32_t>},
	{BLKROGET, BLKROGET_ANSWER, give_number<uint32_t>},
	{BLKIOMIN, BLKIOMIN_ANSWER, give_number<uint32_t>},
	{BLKIOOPT, BLKIOOPT_ANSWER, give_number<uint32_t>},
	{BLKALIGNOFF, BLKALIGNOFF_ANSWER, give_number<uint32_t>},
	{BLKGETZONESZ, BLKGETZONESZ_ANSWER, give_number<uint32_t>},
	{HDIO_GETGEO, HDIO_GETGEO_ANSWER, give_geometry},
	{SCSI_IOCTL_GET_IDLUN, GET_IDLUN_ANSWER, give_address},
	{SCSI_IOCTL_SEND_COMMAND, SEND_COMMAND_ANSWER, give_reply},
	{CDROM_GET_CAPABILITY, CDROM_GET_CAPABILITY_ANSWER, return_number},
	{CDROM_DRIVE_STATUS, CDROM_DRIVE_STATUS_ANSWER, return_number},
	{CDROM_LAST_WRITTEN, CDROM_LAST_WRITTEN_ANSWER, give_number<uint64_t>},
};

static answer_t find_answer(const device_t &dev, answer_kind_t kind)
{
	const bool is_size = kind == BLKGETSIZE_ANSWER || kind == BLKGETSIZE64_ANSWER;
	return is_size ? size_answer(dev, kind) : dev.answers[kind];
}

int answer_ioctl(const device_t &dev, unsigned long request, void *argument)
{
	for (const auto &row : REQUESTS) {
		if (row.request != request)
			continue;
		const answer_t from = find_answer(dev, row.kind);
		if (from.given && from.error == 0 && (argument || row.give == return_number))
			return row.give(from, argument);
		errno = !from.given ? ENOTTY : from.error != 0 ? from.error : EFAULT;
		return -1;
	}
	errno = ENOTTY;
	return -1;
}

} // namespace replay
