// SPDX-License-Identifier: Apache-2.0
// Script and raw output are the host's alone: who can write the one drives the controller, who can write the
// other tells the host what to believe.
#include "outside.h"
#include "site.h"

#include "hwraid/aacraid/aac_controller.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

const char *const CONTROLLERS = "Executing: controller list\n----\naac0  EXAMPLE  read/write  No\n";
const std::string SCRIPT =
	"controller list\n" + std::string(42, ' ') + "\n" + std::string(4, ' ') + "\nexit\n";
const char *const TRIED = "tried"; // made by the attacker when it is done

class ProtectionTest : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		answer(CONTROLLERS);
		// Not the host's umask, which is what these tests are about.
		filter("umask 022; cat \"$1\" >\"$2\"\n");
	}

	static int run_under(mode_t mask)
	{
		const mode_t before = umask(mask);
		aac_controller *head = nullptr;
		const int result = Aac_Get_Controller_List(&head);
		umask(before);
		Aac_Clear_Controller_List(head);
		return result;
	}

	std::string path(const char *name) const { return (site_ / name).string(); }
};

class Umask : public ProtectionTest, public testing::WithParamInterface<mode_t>
{
};

INSTANTIATE_TEST_SUITE_P(Every, Umask, testing::Values(0, 022, 077, 0377, 0777));

TEST_P(Umask, OfTheHostChangesNothing)
{
	tool("umask 022; stat -c %a ./* >" + path("modes") + "; cat >" + path("script") + "; cat " +
	     path("answer") + "\n");
	write_file(site_ / "ran", ""); // made here, so that everybody may touch it
	EXPECT_EQ(run_under(GetParam()), 1);
	EXPECT_EQ(read_file(site_ / "modes"), "600\n600\n");
	EXPECT_EQ(script(), SCRIPT);
}

// ---- a stranger in the working directory ----

std::vector<std::string> names_here()
{
	std::vector<std::string> names;
	std::error_code error;
	for (std::filesystem::directory_iterator entry(".", error), end; entry != end; entry.increment(error))
		names.push_back(entry->path().filename());
	return names;
}

bool can_write(const std::string &name)
{
	const char words[] = "container delete 1\n";
	const int file = open(name.c_str(), O_WRONLY | O_CLOEXEC);
	const bool written = file != -1 && write(file, words, sizeof words - 1) != -1;
	close(file);
	return written;
}

bool become_nobody()
{
	constexpr id_t NOBODY = 65534;
	return setgroups(0, nullptr) == 0 && setgid(NOBODY) == 0 && setuid(NOBODY) == 0;
}

// Waits for script and raw output, writes what it can, and says which that was.
[[noreturn]] void attack()
{
	std::vector<std::string> names;
	for (int i = 0; i < 10000 && names.size() < 2; i++) {
		std::this_thread::sleep_for(std::chrono::milliseconds(1));
		names = names_here();
	}
	std::string said = std::to_string(names.size()) + " files";
	for (const std::string &name : names)
		said += can_write(name) ? " written" : "";
	write_file(TRIED, said);
	_exit(0);
}

TEST_F(ProtectionTest, StrangersDoNotWriteScriptOrRawOutput)
{
	if (geteuid() != 0) {
		printf("only root can send a stranger: the modes of the files are tried elsewhere\n");
		return;
	}
	std::filesystem::permissions(directory_, std::filesystem::perms::all);
	tool("while [ ! -e " + std::string(TRIED) + " ]; do sleep 0.01; done; cat >" + path("script") +
	     "; cat " + path("answer") + "\n");
	const pid_t stranger = fork();
	if (stranger == 0) {
		if (become_nobody())
			attack();
		_exit(1);
	}
	EXPECT_EQ(run_under(0), 1);
	int status = -1;
	waitpid(stranger, &status, 0);
	EXPECT_EQ(status, 0);
	EXPECT_EQ(read_file(TRIED), "2 files");
	EXPECT_EQ(script(), SCRIPT);
	std::filesystem::remove(TRIED);
}

// ---- files that are there already ----

class Planted : public ProtectionTest, public testing::WithParamInterface<const char *>
{
protected:
	void SetUp() override
	{
		ProtectionTest::SetUp();
		outside.first_name = 1;
	}

private:
	own_outside_t own_;
};

INSTANTIATE_TEST_SUITE_P(Names, Planted,
                         testing::Values("11111111-1111-1111-1111-111111111111",
                                         "22222222-2222-2222-2222-222222222222"),
                         [](const testing::TestParamInfo<const char *> &row) {
				 return row.param[0] == '1' ? "Script" : "RawOutput";
			 });

TEST_P(Planted, FileIsNotTaken)
{
	write_file(GetParam(), "mine\n");
	EXPECT_EQ(run_under(022), -1);
	EXPECT_FALSE(tool_ran());
	std::filesystem::remove(GetParam());
}

TEST_P(Planted, LinkIsNotFollowed)
{
	write_file(site_ / "victim", "as it was\n");
	std::filesystem::create_symlink(site_ / "victim", GetParam());
	EXPECT_EQ(run_under(022), -1);
	EXPECT_FALSE(tool_ran());
	EXPECT_EQ(read_file(site_ / "victim"), "as it was\n");
	std::filesystem::remove(GetParam());
}

} // namespace
