// Processes that somebody started for us.
#include "process_tree.h"

#include "kernel.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{
struct closer_t {
	explicit closer_t(int opened) : file(opened) {}
	~closer_t()
	{
		if (file >= 0)
			close(file);
	}
	closer_t(const closer_t &) = delete;
	closer_t &operator=(const closer_t &) = delete;
	const int file;
};

struct process_t {
	pid_t pid;
	pid_t parent;
	bool is_ended; // and waits for its parent to notice
};
} // namespace

// "1234 (any ) name) S 1 ...": the name may hold whatever it likes, and no more of the line matters.
static process_t read_process(pid_t pid)
{
	process_t process = {pid, 0, true};
	char text[512];
	const std::string path = "/proc/" + std::to_string(pid) + "/stat";
	const closer_t file(kernel_open(path.c_str(), O_RDONLY));
	const ssize_t length = file.file < 0 ? -1 : kernel_read(file.file, text, sizeof text - 1);
	if (length <= 0)
		return process;
	text[length] = '\0';
	const char *const behind_name = strrchr(text, ')');
	if (!behind_name || behind_name[1] != ' ' || !behind_name[2])
		return process;
	process.is_ended = behind_name[2] == 'Z' || behind_name[2] == 'X';
	process.parent = static_cast<pid_t>(strtol(behind_name + 3, nullptr, 10));
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
	alignas(entry_t) char block[4096];
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

static pids_t below(pid_t root, const std::vector<process_t> &processes)
{
	pids_t found, open = {root};
	while (!open.empty()) {
		const pid_t parent = open.back();
		open.pop_back();
		for (const process_t &process : processes) {
			if (process.parent != parent)
				continue;
			open.push_back(process.pid);
			if (!process.is_ended)
				found.push_back(process.pid);
		}
	}
	return found;
}

void adopt_orphans()
{
	prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
}

pids_t descendants()
{
	std::vector<process_t> processes;
	visit_processes([&](pid_t pid) { processes.push_back(read_process(pid)); });
	return below(getpid(), processes);
}

pids_t processes_in(const std::string &directory)
{
	pids_t found;
	visit_processes([&](pid_t pid) {
		char target[4096];
		const std::string path = "/proc/" + std::to_string(pid) + "/cwd";
		const long length =
			syscall(SYS_readlinkat, AT_FDCWD, path.c_str(), target, sizeof target - 1);
		if (length <= 0 || pid == getpid())
			return;
		target[length] = '\0';
		const bool is_there = strncmp(target, directory.c_str(), directory.size()) == 0;
		const char behind = is_there ? target[directory.size()] : '?';
		// The kernel adds a remark to what has been removed.
		if (behind == '\0' || behind == '/' || behind == ' ')
			found.push_back(pid);
	});
	return found;
}

// Those that are gone are gone from the table as well.
static void reap()
{
	while (waitpid(-1, nullptr, WNOHANG) > 0) {
	}
}

bool has_children()
{
	siginfo_t info;
	return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

using finder_t = std::function<pids_t()>;

// Until there are none, or the time is over.
static pids_t signal_until(const finder_t &find, int signal, bool again, std::chrono::milliseconds time)
{
	using clock = std::chrono::steady_clock;
	const auto end = clock::now() + time;
	for (bool is_first = true;; is_first = false) {
		reap();
		const pids_t left = find();
		for (const pid_t pid : left) {
			if (!is_first && !again)
				break;
			kill(pid, signal);
			// One that is stopped hears of nothing else.
			kill(pid, SIGCONT);
		}
		if (left.empty() || clock::now() >= end)
			return left;
		std::this_thread::sleep_for(std::chrono::milliseconds(5));
	}
}

static pids_t end_all(const finder_t &find, ending_t how)
{
	if (signal_until(find, SIGTERM, false, how.grace).empty())
		return {};
	return signal_until(find, SIGKILL, true, how.patience);
}

pids_t end_descendants(ending_t how)
{
	return end_all(descendants, how);
}

pids_t end_processes_in(const std::string &directory, ending_t how)
{
	return end_all([&] { return processes_in(directory); }, how);
}
