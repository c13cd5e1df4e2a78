// SPDX-License-Identifier: Apache-2.0
// Streams over table files and over the output of a shell command, read line by line.
#ifndef DISKSCOUT_HDD_SAL_0_FS_H
#define DISKSCOUT_HDD_SAL_0_FS_H

#include "hdd/sal/src/0/def.h"

// Null on failure. Opening does not wait: a pipe without a writer reads as empty. Reading waits for what a
// writer still has to say.
FILE *fsopen_ro(const char *path);
// Flushes all output streams, then closes fs. Returns what closing returned: 0, or EOF.
int fsclose(FILE *fs);
// Zeroes the line_t, then reads at most 1023 characters up to and including a newline, and flushes all
// output streams. 0, or -1 at end of file or error, with the line zeroed.
int fsread_line(FILE *fs, char *line);
// The first line of a file, read as above. 0, or -1 when there is none; the line is zeroed then.
int fsread_line_by_path(const char *path, char *line);
// Writes the text in one piece to a file, such as one of the kernel's that take commands. 0, or -1.
int fswrite_text_by_path(const char *path, const char *text);

// Closes its stream when the scope ends.
class Stream
{
public:
	explicit Stream(FILE *fs) : fs_(fs) {}
	~Stream();
	Stream(const Stream &) = delete;
	Stream &operator=(const Stream &) = delete;
	explicit operator bool() const { return fs_ != nullptr; }
	FILE *get() const { return fs_; }
	// Whether reading has ended for an error and not for the end of the file.
	// compat: readers count that as their failure, so that half a table never passes for a whole one.
	bool failed() const { return ferror(fs_) != 0; }

private:
	fs_t fs_;
};

// Reads the output of a shell command; the child has been waited for when the scope ends.
class Pipe
{
public:
	explicit Pipe(const char *command); // null: none
	~Pipe();
	Pipe(const Pipe &) = delete;
	Pipe &operator=(const Pipe &) = delete;
	explicit operator bool() const { return fs_ != nullptr; }
	FILE *get() const { return fs_; }
	// Waits for the command, whose output has been read to its end. True when it ended with a status
	// other than 0; a host that ignores its children's ends leaves none, and that tells nothing.
	bool has_failed();

private:
	fs_t fs_;
};

#endif
