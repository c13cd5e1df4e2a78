// SPDX-License-Identifier: Apache-2.0
// A device node, opened as the classic code opens it.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_REASONS_NODE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_REASONS_NODE_H

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// Whether an errno says that somebody else may.
inline bool is_denied(int error)
{
	return error == EACCES || error == EPERM;
}

class node_t
{
public:
	explicit node_t(const std::string &path);
	~node_t();
	node_t(const node_t &) = delete;
	node_t &operator=(const node_t &) = delete;

	int error() const { return error_; } // errno of the open, or 0

	// These set errno when they answer nothing; it is 0 where a device ends before the sector's end.
	std::optional<std::uint32_t> scsi_address() const; // as in the kernel's table, packed
	std::optional<std::uint64_t> sectors() const;      // of 512 bytes
	std::optional<int> sector_size() const;            // of the device's own, in bytes
	bool read_sector(std::uint64_t sector, unsigned char (&into)[512]) const;

private:
	int fd_;
	int error_;
};

#endif
