// SPDX-License-Identifier: Apache-2.0
// The answer to INQUIRY page 0x80, four bytes of head and then the text:
//
//   00 80 00 LL 'S' 'E' 'R' ...      LL: length of the text
#include "hdd/sal/src/linux/scsisn.h"

#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/str.h"

#include <scsi/scsi_ioctl.h>
#include <string.h>
#include <sys/ioctl.h>

constexpr unsigned ANSWER_SIZE = 480;
constexpr unsigned PAGE_HEAD = 4;

// Asks for page 0x80, of up to 252 bytes.
constexpr uint8_t INQUIRY[] = {0x12, 0x01, 0x80, 0x00, 0xfc, 0x00};

// What the kernel's send-command request takes: the answer overwrites the command.
struct send_command_t {
	uint32_t data_to_device;
	uint32_t data_from_device;
	uint8_t bytes[ANSWER_SIZE];
};

int get_scsi_device_sn_by_path(const char *path, char *sn)
{
	b0_str(sn);
	const Descriptor device(path);
	if (!device.is_open())
		return -1;

	send_command_t request = {0, ANSWER_SIZE, {}};
	memcpy(request.bytes, INQUIRY, sizeof INQUIRY);
	// A device that rejects the command makes the request return a positive status.
	if (ioctl(device.fd(), SCSI_IOCTL_SEND_COMMAND, &request) != 0)
		return -1;
	// A regular file knows another request by this number, and leaves the command as it stands.
	if (memcmp(request.bytes, INQUIRY, sizeof INQUIRY) == 0)
		return -1;
	const std::string_view text(reinterpret_cast<const char *>(request.bytes) + PAGE_HEAD,
	                            request.bytes[3]);
	str_copy(sn, STR_SIZE, str_trim(text));
	return 0;
}
