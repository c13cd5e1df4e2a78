// SPDX-License-Identifier: Apache-2.0
// A table of the kernel.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_KERNEL_LINES_H
#define DISKSCOUT_TOOLS_DISKSCOUT_KERNEL_LINES_H

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

// A file that is read line by line.
class lines_t
{
public:
	explicit lines_t(const std::string &path)
	    : file_(fopen(path.c_str(), "re")), error_(file_ ? 0 : errno)
	{
	}
	~lines_t()
	{
		free(line_);
		if (file_)
			fclose(file_);
	}
	lines_t(const lines_t &) = delete;
	lines_t &operator=(const lines_t &) = delete;

	bool next(std::string *line)
	{
		if (!file_)
			return false;
		errno = 0;
		const ssize_t length = getline(&line_, &room_, file_);
		if (length < 0) {
			error_ = ferror(file_) ? errno : error_;
			return false;
		}
		line->assign(line_, static_cast<std::size_t>(length));
		return true;
	}
	int error() const { return error_; }

private:
	FILE *file_;
	int error_;
	char *line_ = nullptr;
	std::size_t room_ = 0;
};

#endif
