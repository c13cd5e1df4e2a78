// SPDX-License-Identifier: Apache-2.0
// Streams over table files and over the output of a command, read line by line.
#include "host.h"

#include "hdd/sal/src/0/fs.h"
#include "replay/replay.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <signal.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

class FsTest : public HostTest
{
protected:
	const char *table(std::string_view text)
	{
		host.file("/proc/table", text);
		return "/proc/table";
	}
};

std::string line_text(const char *line)
{
	EXPECT_EQ(line[LINE_SIZE - 1], 0);
	return line;
}

TEST_F(FsTest, OpensForReading)
{
	FILE *fs = fsopen_ro(table("one\n"));
	ASSERT_NE(fs, nullptr);
	EXPECT_EQ(fputc('x', fs), EOF);
	EXPECT_EQ(fsclose(fs), 0);
}

TEST_F(FsTest, MissingFileGivesNoStream)
{
	EXPECT_EQ(fsopen_ro("/proc/none"), nullptr);
}

TEST_F(FsTest, ReadsLineByLineAndKeepsTheNewline)
{
	const Stream fs(fsopen_ro(table("first\n\nlast")));
	line_t line;
	for (const char *expected : {"first\n", "\n", "last"}) {
		memset(line, 'x', sizeof line);
		EXPECT_EQ(fsread_line(fs.get(), line), 0);
		EXPECT_EQ(text_of(line), expected);
	}
	memset(line, 'x', sizeof line);
	EXPECT_EQ(fsread_line(fs.get(), line), -1);
	EXPECT_TRUE(is_zero(line));
}

TEST_F(FsTest, LineOf1023CharactersIsReadWhole)
{
	const Stream fs(fsopen_ro(table(repeat("a", 1022) + "\nnext\n")));
	line_t line;
	EXPECT_EQ(fsread_line(fs.get(), line), 0);
	EXPECT_EQ(line_text(line), repeat("a", 1022) + "\n");
	EXPECT_EQ(fsread_line(fs.get(), line), 0);
	EXPECT_EQ(line_text(line), "next\n");
}

TEST_F(FsTest, LineOf1024CharactersComesInTwoPieces)
{
	const Stream fs(fsopen_ro(table(repeat("a", 1023) + "\nnext\n")));
	line_t line;
	EXPECT_EQ(fsread_line(fs.get(), line), 0);
	EXPECT_EQ(line_text(line), repeat("a", 1023));
	EXPECT_EQ(fsread_line(fs.get(), line), 0);
	EXPECT_EQ(line_text(line), "\n");
	EXPECT_EQ(fsread_line(fs.get(), line), 0);
	EXPECT_EQ(line_text(line), "next\n");
}

// A stream that writes, with five characters not yet flushed.
class PendingOutput
{
public:
	explicit PendingOutput(const std::string &path) : path_(path), out_(fopen(path.c_str(), "w"))
	{
		setvbuf(out_, buffer_, _IOFBF, sizeof buffer_);
		fputs("hello", out_);
	}
	~PendingOutput() { fclose(out_); }
	auto written() const { return std::filesystem::file_size(path_); }

private:
	std::string path_;
	FILE *out_;
	char buffer_[512];
};

TEST_F(FsTest, ReadingALineFlushesTheOutput)
{
	const Stream fs(fsopen_ro(table("one\n")));
	const PendingOutput output(host.path("/output"));
	ASSERT_EQ(output.written(), 0U);
	line_t line;
	EXPECT_EQ(fsread_line(fs.get(), line), 0);
	EXPECT_EQ(output.written(), 5U);
}

TEST_F(FsTest, ClosingFlushesTheOutput)
{
	FILE *fs = fsopen_ro(table("one\n"));
	const PendingOutput output(host.path("/output"));
	ASSERT_EQ(output.written(), 0U);
	EXPECT_EQ(fsclose(fs), 0);
	EXPECT_EQ(output.written(), 5U);
}

TEST_F(FsTest, ReadsTheFirstLineOfAFile)
{
	line_t line;
	memset(line, 'x', sizeof line);
	EXPECT_EQ(fsread_line_by_path(table("first\nsecond\n"), line), 0);
	EXPECT_EQ(text_of(line), "first\n");
	EXPECT_EQ(fsread_line_by_path(table(repeat("a", 1024) + "\n"), line), 0);
	EXPECT_EQ(line_text(line), repeat("a", 1023));
}

TEST_F(FsTest, NoFirstLine)
{
	line_t line;
	memset(line, 'x', sizeof line);
	EXPECT_EQ(fsread_line_by_path(table(""), line), -1);
	EXPECT_TRUE(is_zero(line));
	memset(line, 'x', sizeof line);
	EXPECT_EQ(fsread_line_by_path("/proc/none", line), -1);
	EXPECT_TRUE(is_zero(line));
}

TEST_F(FsTest, FailedReadIsNoLine)
{
	host.directory("/proc/directory");
	line_t line;
	memset(line, 'x', sizeof line);
	EXPECT_EQ(fsread_line_by_path("/proc/directory", line), -1);
	EXPECT_TRUE(is_zero(line));
}

TEST_F(FsTest, WritesTheTextInOnePiece)
{
	EXPECT_EQ(fswrite_text_by_path(table(""), "a command"), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("write /proc/table \"a command\""));
}

TEST_F(FsTest, WriteFails)
{
	const char *path = table("");
	for (const long nth : {1L, 2L}) {
		replay_fail_call(nth, 0);
		EXPECT_EQ(fswrite_text_by_path(path, "a command"), -1) << "call " << nth;
	}
	replay_fail_call(0, 0);
	EXPECT_THAT(host.log(), ::testing::IsEmpty());
}

TEST_F(FsTest, StreamClosesAtTheEndOfItsScope)
{
	const int before = open_descriptors();
	{
		const Stream fs(fsopen_ro(table("one\n")));
		EXPECT_TRUE(static_cast<bool>(fs));
		EXPECT_EQ(open_descriptors(), before + 1);
	}
	EXPECT_EQ(open_descriptors(), before);
	EXPECT_FALSE(static_cast<bool>(Stream(fsopen_ro("/proc/none"))));
}

TEST_F(FsTest, OpeningAPipeWithoutAWriterDoesNotWait)
{
	const std::string pipe = host.path("/pipe");
	ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
	const Stream fs(fsopen_ro(pipe.c_str()));
	ASSERT_TRUE(static_cast<bool>(fs));
	line_t line;
	EXPECT_EQ(fsread_line(fs.get(), line), -1);
}

// What comes through the pipe a while after it has been opened.
TEST_F(FsTest, WaitsForASlowWriter)
{
	const std::string pipe = host.path("/pipe");
	ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
	const int writer = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
	ASSERT_GE(writer, 0);
	const Stream fs(fsopen_ro(pipe.c_str()));
	ASSERT_TRUE(static_cast<bool>(fs));
	std::thread writing([writer] {
		for (const char *piece : {"on", "e\n", "two\n"}) {
			std::this_thread::sleep_for(std::chrono::milliseconds(20));
			EXPECT_GT(write(writer, piece, strlen(piece)), 0);
		}
		close(writer);
	});
	line_t line;
	for (const char *expected : {"one\n", "two\n"}) {
		EXPECT_EQ(fsread_line(fs.get(), line), 0);
		EXPECT_EQ(line_text(line), expected);
	}
	EXPECT_EQ(fsread_line(fs.get(), line), -1);
	EXPECT_FALSE(fs.failed());
	writing.join();
}

TEST_F(FsTest, DescriptorWithoutAStreamIsClosed)
{
	const char *path = table("one\n");
	replay_fail_call(2, 0);
	EXPECT_EQ(fsopen_ro(path), nullptr);
	replay_fail_call(0, 0);
	EXPECT_EQ(replay_calls(), 3);
}

TEST_F(FsTest, PipeReadsWhatTheCommandWrites)
{
	const Pipe output("echo one; echo two");
	ASSERT_TRUE(static_cast<bool>(output));
	line_t line;
	for (const char *expected : {"one\n", "two\n"}) {
		EXPECT_EQ(fsread_line(output.get(), line), 0);
		EXPECT_EQ(line_text(line), expected);
	}
	EXPECT_EQ(fsread_line(output.get(), line), -1);
}

TEST_F(FsTest, PipeTellsACommandThatFails)
{
	EXPECT_FALSE(Pipe("true").has_failed());
	EXPECT_TRUE(Pipe("false").has_failed());
	EXPECT_TRUE(Pipe("exit 255").has_failed());
	EXPECT_TRUE(Pipe("kill -9 $$").has_failed());
	EXPECT_TRUE(Pipe("/none/such 2>/dev/null").has_failed());
	const auto before = signal(SIGCHLD, SIG_IGN);
	EXPECT_FALSE(Pipe("false").has_failed());
	signal(SIGCHLD, before);
}

TEST_F(FsTest, PipeThatCannotBeOpened)
{
	replay_fail_call(1, 0);
	EXPECT_FALSE(static_cast<bool>(Pipe("echo one")));
}

} // namespace
