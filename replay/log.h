// SPDX-License-Identifier: Apache-2.0
// The log of what the program would have changed, one line per event:
//
//   write /proc/scsi/scsi "scsi add-single-device 0 0 1 0"
//   write /dev/hda @512 1024 bytes
//   mknod /dev/.tmp 060777 8:16
//   mkdir /dev/raid 0777
//   unlink /dev/.tmp
//   shell cat /etc/mtab
#ifndef DISKSCOUT_REPLAY_LOG_H
#define DISKSCOUT_REPLAY_LOG_H

#include <stddef.h>
#include <sys/types.h>

namespace replay
{

// Text is logged up to this length; more of it, and all that goes to a device, is logged as a place and a
// count.
constexpr size_t LOG_TEXT_MAX = 4096;

// The log's absolute path, empty when there is none.
const char *log_file();

// Each leaves errno as it found it.
void log_text(const char *path, const char *text, size_t length);
void log_bytes(const char *path, off_t offset, size_t length);
void log_mknod(const char *path, mode_t mode, dev_t number);
void log_mkdir(const char *path, mode_t mode);
void log_unlink(const char *path);
void log_shell(const char *command);

} // namespace replay

#endif
