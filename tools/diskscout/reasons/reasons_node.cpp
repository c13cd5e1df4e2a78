// SPDX-License-Identifier: Apache-2.0
// A device node, opened as the classic code opens it.
#include "reasons_node.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <scsi/scsi.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

// What is no device, such as a pipe in its place, must not make us wait.
static int open_node(const std::string &path)
{
	struct stat status;
	if (stat(path.c_str(), &status) != 0)
		return -1;
	return open(path.c_str(), O_RDONLY | O_CLOEXEC | (S_ISBLK(status.st_mode) ? 0 : O_NONBLOCK));
}

node_t::node_t(const std::string &path) : fd_(open_node(path)), error_(fd_ < 0 ? errno : 0) {}

node_t::~node_t()
{
	if (fd_ >= 0)
		close(fd_);
}

std::optional<std::uint32_t> node_t::scsi_address() const
{
	struct {
		std::uint32_t address;
		std::uint32_t host_unique_id;
	} answer = {};
	if (ioctl(fd_, SCSI_IOCTL_GET_IDLUN, &answer) != 0)
		return std::nullopt;
	return answer.address;
}

std::optional<std::uint64_t> node_t::sectors() const
{
	unsigned long count = 0;
	if (ioctl(fd_, BLKGETSIZE, &count) != 0)
		return std::nullopt;
	return count;
}

std::optional<int> node_t::sector_size() const
{
	int size = 0;
	if (ioctl(fd_, BLKSSZGET, &size) != 0)
		return std::nullopt;
	return size;
}

bool node_t::read_sector(std::uint64_t sector, unsigned char (&into)[512]) const
{
	std::size_t done = 0;
	errno = 0;
	while (done < sizeof into) {
		const ssize_t got = pread(fd_, into + done, sizeof into - done,
		                          static_cast<off_t>(sector * sizeof into + done));
		if (got < 0 && errno == EINTR)
			continue;
		if (got <= 0)
			return false;
		done += static_cast<std::size_t>(got);
	}
	return true;
}
