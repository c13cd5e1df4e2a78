// SPDX-License-Identifier: Apache-2.0
// Runs whose files do not fit the disk, or whose working directory cannot be written. Each test works in a
// child of its own, in a small file system that nobody else sees. Where no file system can be mounted, a
// limit on the size of files stands in for it and the test says so.
#include "site.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <signal.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr size_t PAGE = 4096;

// The rights to mount are those of a child's own namespace; its files need an owner there.
bool own_namespace()
{
	if (unshare(CLONE_NEWNS) == 0)
		return true;
	const std::string user = "0 " + std::to_string(geteuid()) + " 1";
	const std::string group = "0 " + std::to_string(getegid()) + " 1";
	if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
		return false;
	write_file("/proc/self/setgroups", "deny");
	write_file("/proc/self/uid_map", user);
	write_file("/proc/self/gid_map", group);
	return true;
}

// Root may write where nobody may; root without capabilities may not.
void give_up_privileges()
{
	__user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
	__user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
	syscall(SYS_capset, &header, none);
}

// A small disk, or files of a limited size; both mean the same to a run.
enum class room_t { DISK, LIMIT };

class FullDiskTest : public SiteTest, public testing::WithParamInterface<room_t>
{
protected:
	// In a child: what the work says of itself.
	template <typename Work> std::string in_a_child(const Work &work)
	{
		int ends[2];
		if (pipe2(ends, O_CLOEXEC) != 0)
			return "no pipe";
		fflush(nullptr);
		const pid_t child = fork();
		if (child == 0) {
			const std::string said = work();
			(void)!write(ends[1], said.data(), said.size());
			fflush(nullptr);
			_exit(0);
		}
		close(ends[1]);
		char said[4096] = "";
		(void)!read(ends[0], said, sizeof said - 1);
		close(ends[0]);
		int status = -1;
		waitpid(child, &status, 0);
		EXPECT_EQ(status, 0);
		return said;
	}

	// Mounts a file system over the working directory. False, and a word about it, where that is
	// forbidden.
	bool mount_here(const std::string &options, unsigned long flags = 0) const
	{
		if (GetParam() == room_t::LIMIT)
			return false;
		if (own_namespace() && mount("none", "/", "none", MS_REC | MS_PRIVATE, "") == 0 &&
		    mount("none", directory_.c_str(), "tmpfs", flags, options.c_str()) == 0)
			return chdir(directory_.c_str()) == 0;
		printf("no file system can be mounted here (%s): the test makes do without\n",
		       strerror(errno));
		return false;
	}

	// A disk with so many pages free, or files that may have so many bytes each.
	void leave_room(size_t pages, size_t limit) const
	{
		if (mount_here("size=" + std::to_string((pages + 1) * PAGE))) {
			write_file("filler", std::string(PAGE, 'x'));
			return;
		}
		write_file(site_ / "limited", "");
		signal(SIGXFSZ, SIG_IGN);
		const rlimit both = {limit, limit};
		setrlimit(RLIMIT_FSIZE, &both);
	}

	// Result and records of a list, whether the tool was run, and what stands in the directory
	// afterwards.
	std::string list(const std::string &controller = "") const
	{
		aac_controller *controllers = nullptr;
		aac_container *containers = nullptr;
		const int result = controller.empty()
		                           ? Aac_Get_Controller_List(&controllers)
		                           : Aac_Get_Container_List(controller.c_str(), &containers);
		std::string said = std::to_string(result) + (controllers || containers ? " records" : "") +
		                   (tool_ran() ? " ran" : "");
		Aac_Clear_Controller_List(controllers);
		Aac_Clear_Container_List(containers);
		for (const std::string &name : left_over())
			said += name == "filler" ? "" : " " + name;
		return said;
	}

	std::string list_with_room(size_t pages, size_t limit, const std::string &controller = "")
	{
		return in_a_child([&] {
			leave_room(pages, limit);
			return list(controller);
		});
	}

	// A blank line ends the table: what follows is ballast.
	static std::string answer_of(size_t bytes)
	{
		const std::string table =
			"Executing: controller list\n----\naac0  EXAMPLE  read/write  No\n\n";
		const std::string end = "\nExecuting: exit\n";
		return table + std::string(bytes - table.size() - end.size(), 'x') + end;
	}
};

INSTANTIATE_TEST_SUITE_P(Rooms, FullDiskTest, testing::Values(room_t::DISK, room_t::LIMIT),
                         [](const testing::TestParamInfo<room_t> &row) {
				 return row.param == room_t::DISK ? "Disk" : "Limit";
			 });

TEST_P(FullDiskTest, NoRoomForTheScript)
{
	answer(answer_of(100));
	EXPECT_EQ(list_with_room(0, 0), "-1");
}

// The tool would obey the part that is there.
TEST_P(FullDiskTest, RoomForHalfAScript)
{
	EXPECT_EQ(list_with_room(1, PAGE, std::string(6000, 'c')), "-1");
}

TEST_P(FullDiskTest, NoRoomForTheAnswer)
{
	answer(answer_of(3 * PAGE));
	EXPECT_EQ(list_with_room(2, PAGE), "-1 ran");
}

// A tool that says nothing of it is believed: no text is a list without controllers, but no list of
// containers.
TEST_P(FullDiskTest, NoRoomForTheAnswerAndNobodyCares)
{
	tool("cat >/dev/null; cat " + (site_ / "answer").string() + " 2>/dev/null; exit 0\n");
	answer(std::string(200, '-') + "\n" + answer_of(3 * PAGE));
	// Unlike cat, tr asks for no more than it has when a file has reached its limit.
	filter("tr x x <\"$1\" >\"$2\"\n");
	EXPECT_EQ(list_with_room(1, 150), "0 ran");
	EXPECT_EQ(list_with_room(1, 150, "aac0"), "-1 ran");
}

TEST_P(FullDiskTest, NoRoomForTheFilteredAnswer)
{
	answer(answer_of(PAGE));
	filter("cat \"$1\" \"$1\" \"$1\" >\"$2\"\n");
	EXPECT_EQ(list_with_room(3, 2 * PAGE), "-1 ran");
	// With room to spare: nothing but the disk was to blame.
	EXPECT_EQ(list_with_room(6, 4 * PAGE), "1 records ran");
}

// The filter script works on a file of its own before it hands it over. It makes a text no longer: a limit is
// for it alone.
TEST_P(FullDiskTest, NoRoomForTheFilterScript)
{
	answer(answer_of(PAGE));
	filter("exec '" FILTER_PROGRAM "' \"$1\" \"$2\"\n");
	EXPECT_EQ(list_with_room(3, 2 * PAGE), "1 records ran");
	filter("[ ! -e " + (site_ / "limited").string() +
	       " ] || ulimit -f 0\nexec '" FILTER_PROGRAM "' \"$1\" \"$2\"\n");
	EXPECT_EQ(list_with_room(2, 2 * PAGE), "-1 ran");
}

TEST_P(FullDiskTest, DirectoryThatCannotBeWritten)
{
	EXPECT_EQ(in_a_child([this] {
			  if (mount_here("", MS_RDONLY))
				  return list();
			  std::filesystem::permissions(directory_, std::filesystem::perms(0555));
			  give_up_privileges();
			  return list();
		  }),
	          "-1");
	std::filesystem::permissions(directory_, std::filesystem::perms(0755));
}

class GoneDirectoryTest : public SiteTest
{
};

// Between tool and filter.
TEST_F(GoneDirectoryTest, FailsTheRun)
{
	answer("Executing: controller list\n----\naac0  EXAMPLE  read/write  No\n");
	tool("cat >/dev/null; cat " + (site_ / "answer").string() + "; rm -r " + directory_.string() + "\n");
	aac_controller *head = nullptr;
	EXPECT_EQ(Aac_Get_Controller_List(&head), -1);
	EXPECT_EQ(head, nullptr);
	EXPECT_TRUE(tool_ran());
	EXPECT_FALSE(std::filesystem::exists(directory_));
	std::filesystem::create_directory(directory_);
}

} // namespace
