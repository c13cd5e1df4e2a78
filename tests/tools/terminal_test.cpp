// SPDX-License-Identifier: Apache-2.0
// What is found out about the other end of standard output.
#include "terminal.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

// A terminal of so many columns; both of its ends are closed again.
class Terminal
{
public:
	explicit Terminal(unsigned short columns) : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
	{
		EXPECT_EQ(grantpt(master_), 0);
		EXPECT_EQ(unlockpt(master_), 0);
		slave = open(ptsname(master_), O_RDWR | O_NOCTTY | O_CLOEXEC);
		EXPECT_GE(slave, 0);
		winsize size = {};
		size.ws_row = 25;
		size.ws_col = columns;
		EXPECT_EQ(ioctl(slave, TIOCSWINSZ, &size), 0);
	}
	Terminal(const Terminal &) = delete;
	Terminal &operator=(const Terminal &) = delete;
	~Terminal()
	{
		close(slave);
		close(master_);
	}

	int slave;

private:
	const int master_;
};

TEST(TerminalColumns, AreThoseOfTheTerminal)
{
	EXPECT_EQ(terminal_columns(Terminal(20).slave), std::optional<std::size_t>(20));
	EXPECT_EQ(terminal_columns(Terminal(65535).slave), std::optional<std::size_t>(65535));
}

TEST(TerminalColumns, NoneWhereNothingTellsThem)
{
	EXPECT_EQ(terminal_columns(Terminal(0).slave), std::nullopt);
	EXPECT_EQ(terminal_columns(-1), std::nullopt);
	int ends[2];
	ASSERT_EQ(pipe(ends), 0);
	EXPECT_EQ(terminal_columns(ends[1]), std::nullopt);
	close(ends[0]);
	close(ends[1]);
	const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
	EXPECT_EQ(terminal_columns(null), std::nullopt);
	close(null);
}

class WritesUtf8 : public ::testing::Test
{
protected:
	WritesUtf8()
	{
		for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG", "LC_MESSAGES"})
			unsetenv(name);
	}
};

TEST_F(WritesUtf8, NotWithoutALocale)
{
	EXPECT_FALSE(writes_utf8());
}

TEST_F(WritesUtf8, AsEachVariableSays)
{
	for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
		setenv(name, "C.UTF-8", 1);
		EXPECT_TRUE(writes_utf8()) << name;
		setenv(name, "C", 1);
		EXPECT_FALSE(writes_utf8()) << name;
		setenv(name, "no_SUCH.UTF-8", 1);
		EXPECT_FALSE(writes_utf8()) << name;
		unsetenv(name);
	}
	setenv("LC_MESSAGES", "C.UTF-8", 1);
	EXPECT_FALSE(writes_utf8());
}

TEST_F(WritesUtf8, TheStrongerVariableWins)
{
	setenv("LANG", "C.UTF-8", 1);
	setenv("LC_CTYPE", "C", 1);
	EXPECT_FALSE(writes_utf8());
	setenv("LC_ALL", "C.UTF-8", 1);
	EXPECT_TRUE(writes_utf8());
	// An empty one says nothing.
	setenv("LC_ALL", "", 1);
	EXPECT_FALSE(writes_utf8());
	setenv("LC_CTYPE", "", 1);
	EXPECT_TRUE(writes_utf8());
}

TEST_F(WritesUtf8, TheProgramsLocaleStays)
{
	setenv("LC_ALL", "C.UTF-8", 1);
	EXPECT_TRUE(writes_utf8());
	EXPECT_STREQ(setlocale(LC_ALL, nullptr), "C");
}

} // namespace
