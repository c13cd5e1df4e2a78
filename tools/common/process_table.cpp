// SPDX-License-Identifier: Apache-2.0
// The kernel's table of processes.
#include "process_table.h"

#include "kernel.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <unistd.h>

namespace
{
struct closer_t {
	explicit closer_t(long opened) : file(static_cast<int>(opened)) {}
	~closer_t()
	{
		if (file >= 0)
			close(file);
	}
	closer_t(const closer_t &) = delete;
	closer_t &operator=(const closer_t &) = delete;
	const int file;
};
} // namespace

static std::string link_past_library(const std::string &path)
{
	char target[4096];
	const long length = syscall(SYS_readlinkat, AT_FDCWD, path.c_str(), target, sizeof target);
	return {target, length > 0 ? static_cast<std::size_t>(length) : 0};
}

static std::string folder_of(pid_t pid)
{
	return "/proc/" + std::to_string(pid);
}

// "1234 (any ) name) S 1 ...": the name may hold whatever it likes.
process_t read_process(pid_t pid)
{
	enum { PARENT = 4, TERMINAL = 7, THREADS = 20, START = 22 };
	process_t process;
	process.pid = pid;
	char text[1024];
	const closer_t stat(kernel_open((folder_of(pid) + "/stat").c_str(), O_RDONLY));
	const ssize_t length = stat.file < 0 ? -1 : kernel_read(stat.file, text, sizeof text - 1);
	if (length <= 0)
		return process;
	text[length] = '\0';
	char *const behind_name = strrchr(text, ')');
	if (!behind_name || behind_name[1] != ' ' || !behind_name[2])
		return process;
	const char state = behind_name[2];
	char *next = behind_name + 3;
	long long fields[START + 1];
	for (int i = PARENT; i <= START; i++)
		fields[i] = strtoll(next, &next, 10);
	process.parent = static_cast<pid_t>(fields[PARENT]);
	// Of one that has ended in its first thread alone the others are still there.
	process.is_ended = state == 'X' || (state == 'Z' && fields[THREADS] <= 1);
	process.has_terminal = fields[TERMINAL] != 0;
	process.start = static_cast<std::uint64_t>(fields[START]);
	return process;
}

// As the kernel hands it out.
struct entry_t {
	std::uint64_t inode;
	std::int64_t offset;
	unsigned short length;
	unsigned char type;
	char name[];
};

static void visit_processes(const std::function<void(pid_t pid)> &visit)
{
	const closer_t folder(kernel_open("/proc", O_RDONLY | O_DIRECTORY));
	alignas(entry_t) char block[1 << 14];
	for (;;) {
		const long length =
			folder.file < 0 ? -1 : syscall(SYS_getdents64, folder.file, block, sizeof block);
		if (length <= 0)
			return;
		for (long at = 0; at < length;) {
			const auto *const entry = reinterpret_cast<const entry_t *>(block + at);
			const long pid = strtol(entry->name, nullptr, 10);
			if (pid > 0)
				visit(static_cast<pid_t>(pid));
			at += entry->length;
		}
	}
}

std::vector<process_t> read_processes()
{
	std::vector<process_t> processes;
	// The numbers of another space may be those of anybody here.
	if (link_past_library("/proc/self") == std::to_string(getpid()))
		visit_processes([&](pid_t pid) { processes.push_back(read_process(pid)); });
	return processes;
}

bool works_in(pid_t pid, const std::string &directory)
{
	const std::string where = link_past_library(folder_of(pid) + "/cwd");
	if (where.compare(0, directory.size(), directory) != 0)
		return false;
	const std::string behind = where.substr(directory.size());
	// The kernel adds a remark to what has been removed.
	return behind.empty() || behind[0] == '/' || behind == " (deleted)";
}

bool was_started_with(pid_t pid, const std::string &line)
{
	const closer_t file(kernel_open((folder_of(pid) + "/environ").c_str(), O_RDONLY));
	// As if a line stood before the first one, too.
	std::string lines(1, '\0');
	char piece[1 << 14];
	for (ssize_t length = 1; file.file >= 0 && length > 0;) {
		length = kernel_read(file.file, piece, sizeof piece);
		lines.append(piece, length > 0 ? static_cast<std::size_t>(length) : 0);
	}
	lines += '\0';
	return lines.find('\0' + line + '\0') != std::string::npos;
}

bool send_signal(const process_t &to, int signal)
{
	// What is held cannot be handed to anybody else while we look who it is.
	const closer_t held(syscall(SYS_pidfd_open, to.pid, 0));
	const process_t now = read_process(to.pid);
	if (now.is_ended || now.start != to.start)
		return false;
	if (held.file >= 0 && syscall(SYS_pidfd_send_signal, held.file, signal, nullptr, 0) == 0)
		return true;
	return kill(to.pid, signal) == 0;
}
