// SPDX-License-Identifier: Apache-2.0
// A file system that never answers.
#include "silent_mount.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <linux/fuse.h>
#include <sched.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

// The first question is who is there; without an answer no other one is ever asked.
static void answer_first(int device, const fuse_in_header &asked)
{
	struct {
		fuse_out_header head;
		fuse_init_out body;
	} answer = {};
	answer.head.len = sizeof answer;
	answer.head.unique = asked.unique;
	answer.body.major = FUSE_KERNEL_VERSION;
	answer.body.minor = FUSE_KERNEL_MINOR_VERSION;
	answer.body.max_write = 4096;
	if (write(device, &answer, sizeof answer) < 0)
		_exit(1);
}

[[noreturn]] static void serve(int device, questions_t questions)
{
	prctl(PR_SET_PDEATHSIG, SIGKILL);
	alignas(fuse_in_header) static char question[1 << 17];
	const auto &head = reinterpret_cast<const fuse_in_header &>(question);
	while (questions == questions_t::TAKEN && read(device, question, sizeof question) > 0) {
		if (head.opcode == FUSE_INIT)
			answer_first(device, head);
	}
	for (;;)
		pause();
}

silent_mount_t::silent_mount_t(std::string directory, questions_t questions)
    : directory_(std::move(directory))
{
	open(questions);
}

// Where nothing is shared nothing has to be made private, which a root directory that is no mount refuses.
static bool is_alone()
{
	std::ifstream table("/proc/self/mountinfo");
	std::ostringstream text;
	text << table.rdbuf();
	return table.is_open() && text.str().find(" shared:") == std::string::npos;
}

void silent_mount_t::open(questions_t questions)
{
	const auto lacks = [&](const char *what) { lack_ = std::string(what) + ": " + strerror(errno); };
	if (unshare(CLONE_NEWNS) != 0 ||
	    (!is_alone() && mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) != 0))
		return lacks("no room of mounts");
	const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
	if (device < 0)
		return lacks("/dev/fuse");
	const std::string data = "fd=" + std::to_string(device) + ",rootmode=40000,user_id=0,group_id=0";
	if (mount("silent", directory_.c_str(), "fuse", MS_NOSUID | MS_NODEV, data.c_str()) != 0)
		lacks("mount");
	else if ((server_ = fork()) == 0)
		serve(device, questions);
	close(device);
}

silent_mount_t::~silent_mount_t()
{
	if (server_ < 0)
		return;
	kill(server_, SIGKILL);
	waitpid(server_, nullptr, 0);
	umount2(directory_.c_str(), MNT_DETACH);
}
