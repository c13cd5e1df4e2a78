// SPDX-License-Identifier: Apache-2.0
// Programs that ask the library before them, and may be told what is wrong with their host.

#include "preload.h"

#include <gmock/gmock.h>

using ::testing::HasSubstr;

class ReplayAsked : public PreloadDir
{
protected:
	ended ask(const std::string &variables, const std::string &fields = "") const
	{
		return run(variables, std::string("'" REPLAY_ASKER "' ") + fields);
	}

	std::string table() const { return (host() / "host.txt").string(); }
};

// What a program that asks hears, in one line; a child is not told that anybody asks.
static std::string asked(const std::string &fault)
{
	return "fault: " + fault + "\nchild: none\n";
}

static const std::string keep = " REPLAY_FAULT=keep";

TEST_F(ReplayAsked, NothingIsWrong)
{
	put("host.txt", "");
	for (const std::string &variables : {std::string(), keep, sysroot(), sysroot() + keep}) {
		const ended got = ask(variables);
		EXPECT_EQ(got.status, 0) << variables;
		EXPECT_THAT(got.said, HasSubstr("fault: none\n")) << variables;
	}
}

TEST_F(ReplayAsked, FaultOfTheTable)
{
	put("host.txt", "device /dev/hda\nBLKGETSIZE twelve\n");
	const ended got = ask(sysroot() + keep);
	EXPECT_EQ(got.status, 0);
	EXPECT_EQ(got.said, asked(table() + ":2: not a number, or one too large"));
}

TEST_F(ReplayAsked, FaultOfTheWholeTable)
{
	const ended got = ask(sysroot() + keep);
	EXPECT_EQ(got.said, asked(table() + ": a captured host has this file, and it cannot be read"));
}

// A line's end within a path is the path's own; only the sentence's goes.
TEST_F(ReplayAsked, FaultWithALineEndInIt)
{
	const ended got = ask("REPLAY_SYSROOT=\"$(printf '/no\\nwhere')\"" + keep);
	EXPECT_EQ(got.said,
	          asked("/no\nwhere/host.txt: a captured host has this file, and it cannot be read"));
}

TEST_F(ReplayAsked, FaultWithoutASentence)
{
	const ended got = ask("REPLAY_SYSROOT=/" + std::string(5000, 'a') + keep);
	EXPECT_EQ(got.said, asked("the captured host cannot be loaded"));
}

TEST_F(ReplayAsked, FaultOfAnotherVariable)
{
	put("host.txt", "");
	const ended got = ask(sysroot() + keep + " REPLAY_FAIL=x");
	EXPECT_EQ(got.status, 0);
	EXPECT_THAT(got.said, HasSubstr("fault: REPLAY_FAIL=x: not N or N+\n"));
}

TEST_F(ReplayAsked, WhoDoesNotAnnounceItEnds)
{
	put("host.txt", "device\n");
	const ended got = ask(sysroot());
	EXPECT_EQ(got.status, 2);
	EXPECT_THAT(got.said, testing::StartsWith(table() + ":1: "));
	EXPECT_EQ(ask("REPLAY_SYSROOT=/" + std::string(5000, 'a')).said, "");
}

TEST_F(ReplayAsked, MalformedAnnouncementEndsTheProgram)
{
	for (const std::string word : {"", "1", "Keep", "keep "}) {
		const ended got = ask("REPLAY_FAULT='" + word + "'");
		EXPECT_EQ(got.status, 2) << word;
		EXPECT_EQ(got.said, "REPLAY_FAULT=" + word + ": not keep\n");
	}
}

// Whoever shows another host later reads on standard error what is wrong with that one.
TEST_F(ReplayAsked, OnlyTheStartsFaultIsKept)
{
	put("host.txt", "device\n");
	const ended got = ask("REPLAY_SYSROOT=/nowhere" + keep, host().string());
	EXPECT_THAT(got.said, testing::MatchesRegex("fault: /nowhere/host.txt: [^\n]*\n" + table() +
	                                            ":1: [^\n]*\nused: -1\nchild: none\n"));
}

TEST_F(ReplayAsked, WhatTheHostTellsOfItsKernel)
{
	put("host.txt", "uname release 6.1.0\\040x\nuname nodename web1\n");
	const std::string fields = "nodename release sysname version machine domain ''";
	EXPECT_EQ(ask(sysroot(), fields).said,
	          "fault: none\nnodename: web1\nrelease: 6.1.0 x\nsysname: none\n"
	          "version: none\nmachine: none\ndomain: none\n: none\n"
	          "child: none\n");
	EXPECT_THAT(ask("", "nodename release").said, HasSubstr("nodename: none\nrelease: none\n"));
	put("host.txt", "uname release 6.1.0\nuname\n");
	EXPECT_THAT(ask(sysroot() + keep, "release").said, HasSubstr("release: none\n"));
}

TEST_F(ReplayAsked, LinkedIn)
{
	put("host.txt", "device\n");
	const std::string said = stderr_of([this] { EXPECT_EQ(replay_use(host().c_str()), -1); });
	EXPECT_THAT(said, testing::StartsWith(table() + ":1: "));
	EXPECT_EQ(replay_fault(), nullptr);
	ASSERT_EQ(show("uname sysname Other\nuname version \\0431\nuname machine m68k\n"), 0);
	EXPECT_STREQ(replay_uname_told("sysname"), "Other");
	EXPECT_STREQ(replay_uname_told("version"), "#1");
	EXPECT_STREQ(replay_uname_told("machine"), "m68k");
	EXPECT_EQ(replay_uname_told("release"), nullptr);
	ASSERT_EQ(replay_use(nullptr), 0);
	EXPECT_EQ(replay_uname_told("sysname"), nullptr);
}
