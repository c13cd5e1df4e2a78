// SPDX-License-Identifier: Apache-2.0
// The diagnostic command line: what every inner node and every leaf has in common.
#include "host.h"

#include "hdd/sal/src/0/cli.h"

#include <limits.h>

namespace
{

// A command line, as main gets it.
class Words
{
public:
	explicit Words(std::vector<std::string> words) : words_(std::move(words))
	{
		for (std::string &word : words_)
			argv_.push_back(word.data());
		argv_.push_back(nullptr);
	}
	int argc() const { return static_cast<int>(words_.size()); }
	char **argv() { return argv_.data(); }

private:
	std::vector<std::string> words_;
	std::vector<char *> argv_;
};

// The children of a node under test write down that they were called, and with what.
struct child_call_t {
	char child;
	int argc;
	char **argv;
	int start;
};
std::vector<child_call_t> child_calls;

// Knows any word: matches that often and returns that.
template <char name, int count, int result> int child(int argc, char **argv, int start, int *matched)
{
	child_calls.push_back({name, argc, argv, start});
	*matched = 0;
	if (argc - start < 1)
		return 0;
	*matched = count;
	return result;
}

class RunNode : public ::testing::Test
{
protected:
	void SetUp() override { child_calls.clear(); }
	// "result matched: children called", with rubbish in matched before.
	template <size_t count>
	std::string run(const cli_func_t (&children)[count], const std::vector<std::string> &line,
	                int start = 0)
	{
		Words words(line);
		std::string text;
		for (const int before : {0, 1, -7, INT_MAX}) {
			child_calls.clear();
			int matched = before;
			const int result = run_node(children, words.argc(), words.argv(), start, &matched);
			const std::string now = number(result) + " " + number(matched) + ": " + called();
			if (!text.empty()) {
				EXPECT_EQ(now, text) << before;
			}
			text = now;
		}
		return text;
	}
	static std::string called()
	{
		std::string names;
		for (const child_call_t &call : child_calls)
			names += call.child;
		return names;
	}
};

TEST_F(RunNode, StopsAtTheFirstThatKnowsTheWord)
{
	static const cli_func_t children[] = {child<'a', 0, 0>, child<'b', 1, 0>, child<'c', 1, 0>};
	EXPECT_EQ(run(children, {"word"}), "0 1: ab");
	EXPECT_EQ(run(children, {"word", "help"}), "0 1: ab");
	EXPECT_EQ(run(children, {"word", "more", "words"}), "0 1: ab");
}

TEST_F(RunNode, NobodyKnowsTheWord)
{
	static const cli_func_t children[] = {child<'a', 0, 0>, child<'b', 0, 0>};
	EXPECT_EQ(run(children, {"word"}), "0 0: ab");
}

TEST_F(RunNode, FailureOfOneThatKnowsTheWord)
{
	static const cli_func_t minus[] = {child<'a', 0, 0>, child<'b', 1, -1>, child<'c', 1, 0>};
	EXPECT_EQ(run(minus, {"word"}), "-1 1: ab");
	static const cli_func_t other[] = {child<'a', 1, 5>, child<'b', 1, 0>};
	EXPECT_EQ(run(other, {"word"}), "-1 1: a");
}

TEST_F(RunNode, ResultOfOneThatDoesNotKnowTheWordDoesNotCount)
{
	static const cli_func_t children[] = {child<'a', 0, -1>, child<'b', 1, 0>};
	EXPECT_EQ(run(children, {"word"}), "0 1: ab");
	static const cli_func_t unknown[] = {child<'a', 0, -1>, child<'b', 0, -1>};
	EXPECT_EQ(run(unknown, {"word"}), "0 0: ab");
}

TEST_F(RunNode, CountsOfNodesBelowAreTakenOver)
{
	static const cli_func_t children[] = {child<'a', 3, 0>, child<'b', 1, 0>};
	EXPECT_EQ(run(children, {"word"}), "0 3: a");
	EXPECT_EQ(run(children, {"help"}), "0 4: ab");
}

TEST_F(RunNode, HelpAndCliidGoToEveryChild)
{
	static const cli_func_t children[] = {child<'a', 1, 0>, child<'b', 0, 0>, child<'c', 1, 0>};
	for (const char *word : {"help", "cliid"}) {
		EXPECT_EQ(run(children, {word}), "0 2: abc") << word;
		EXPECT_EQ(run(children, {word, "more"}), "0 2: abc") << word;
	}
	static const cli_func_t failing[] = {child<'a', 1, -1>, child<'b', 1, 0>};
	EXPECT_EQ(run(failing, {"help"}), "0 2: ab");
	EXPECT_EQ(run(failing, {"cliid"}), "0 2: ab");
}

TEST_F(RunNode, OnlyTheseVeryWordsGoToEveryChild)
{
	static const cli_func_t children[] = {child<'a', 1, 0>, child<'b', 1, 0>};
	for (const char *word :
	     {"hel", "helpx", "Help", "HELP", "cli", "cliids", "Cliid", "", " help", "--help"})
		EXPECT_EQ(run(children, {word}), "0 1: a") << word;
}

TEST_F(RunNode, WordsAreHandedOnUnchanged)
{
	static const cli_func_t children[] = {child<'a', 0, 0>, child<'b', 1, 0>};
	Words words({"program", "first", "second"});
	int matched = 0;
	EXPECT_EQ(run_node(children, words.argc(), words.argv(), 1, &matched), 0);
	EXPECT_EQ(matched, 1);
	ASSERT_EQ(child_calls.size(), 2U);
	for (const child_call_t &call : child_calls) {
		EXPECT_EQ(call.argc, 3);
		EXPECT_EQ(call.argv, words.argv());
		EXPECT_EQ(call.start, 1);
	}
}

TEST_F(RunNode, LooksAtTheWordWhereItStarts)
{
	static const cli_func_t children[] = {child<'a', 1, 0>, child<'b', 1, 0>};
	EXPECT_EQ(run(children, {"help", "word"}, 1), "0 1: a");
	EXPECT_EQ(run(children, {"word", "help"}, 1), "0 2: ab");
}

TEST_F(RunNode, WithoutAWordNothingMatches)
{
	static const cli_func_t children[] = {child<'a', 1, -1>, child<'b', 1, 0>};
	for (const int start : {1, 2, 100}) {
		EXPECT_EQ(run(children, {"help"}, start).substr(0, 4), "0 0:") << start;
	}
	EXPECT_EQ(run(children, {}).substr(0, 4), "0 0:");
}

TEST_F(RunNode, TakesTenChildren)
{
	static const cli_func_t children[] = {
		child<'a', 0, 0>, child<'b', 0, 0>, child<'c', 0, 0>, child<'d', 0, 0>, child<'e', 0, 0>,
		child<'f', 0, 0>, child<'g', 0, 0>, child<'h', 0, 0>, child<'i', 0, 0>, child<'j', 1, 0>};
	EXPECT_EQ(run(children, {"word"}), "0 1: abcdefghij");
	EXPECT_EQ(run(children, {"help"}), "0 1: abcdefghij");
}

TEST_F(RunNode, SkipsAChildThatIsNone)
{
	static const cli_func_t children[] = {nullptr, child<'a', 0, 0>, nullptr, child<'b', 1, 0>};
	EXPECT_EQ(run(children, {"word"}), "0 1: ab");
	EXPECT_EQ(run(children, {"help"}), "0 1: ab");
}

// The actions of a leaf under test write down the words that they get.
std::vector<std::string> actions;

template <char name, int result> int action(char *const *words)
{
	actions.push_back(std::string(1, name) + ":" + words[0]);
	return result;
}

int join_three(char *const *words)
{
	actions.push_back(std::string(words[0]) + "+" + words[1] + "+" + words[2]);
	return 0;
}

const command_t COMMANDS[] = {
	{"one", "", 1, action<'a', 0>},
	{"two", "(once/twice)", 1, action<'b', 0>},
	{"two", "(never)", 2, action<'c', -1>},
	{"three", "", 3, join_three},
	{"talk", "", 1, nullptr},
	{"talkmore", "(much)", 1, nullptr},
};

class RunLeaf : public ::testing::Test
{
protected:
	void SetUp() override { actions.clear(); }
	// "result matched" and what was printed, with rubbish in matched before.
	std::string run(const std::vector<std::string> &line, int start = 0)
	{
		Words words(line);
		std::string text;
		for (const int before : {0, 1, -7, INT_MAX}) {
			actions.clear();
			int matched = before;
			int result = -2;
			const std::string output = stderr_of([&] {
				result = run_leaf("leaf", COMMANDS, words.argc(), words.argv(), start,
				                  &matched);
			});
			const std::string now = number(result) + " " + number(matched) + "\n" + output;
			if (!text.empty()) {
				EXPECT_EQ(now, text) << before;
			}
			text = now;
		}
		return text;
	}
};

TEST_F(RunLeaf, RunsTheRowWithAsManyWords)
{
	EXPECT_EQ(run({"one"}), "0 1\n");
	EXPECT_THAT(actions, ::testing::ElementsAre("a:one"));
	EXPECT_EQ(run({"two"}), "0 1\n");
	EXPECT_THAT(actions, ::testing::ElementsAre("b:two"));
	EXPECT_EQ(run({"three", "x", "y"}), "0 1\n");
	EXPECT_THAT(actions, ::testing::ElementsAre("three+x+y"));
}

TEST_F(RunLeaf, FailureOfTheAction)
{
	EXPECT_EQ(run({"two", "x"}), "-1 1\n");
	EXPECT_THAT(actions, ::testing::ElementsAre("c:two"));
}

TEST_F(RunLeaf, ActionGetsTheWordsFromTheCommandOn)
{
	EXPECT_EQ(run({"program", "one", "three", "x", "y"}, 2), "0 1\n");
	EXPECT_THAT(actions, ::testing::ElementsAre("three+x+y"));
}

TEST_F(RunLeaf, WrongNumberOfWordsMatchesAndFails)
{
	for (const auto &line : std::vector<std::vector<std::string>>{{"one", "x"},
	                                                              {"one", ""},
	                                                              {"two", "x", "y"},
	                                                              {"three"},
	                                                              {"three", "x"},
	                                                              {"three", "x", "y", "z"}}) {
		EXPECT_EQ(run(line), "-1 1\n") << line[0] << line.size();
		EXPECT_TRUE(actions.empty());
	}
}

TEST_F(RunLeaf, UnknownWords)
{
	for (const char *word : {"four", "on", "onex", "One", " one", "one ", "", "leaf", "leaf:", "-one",
	                         "Help", "helpx", "cliidx"}) {
		EXPECT_EQ(run({word}), "0 0\n") << word;
		EXPECT_EQ(run({word, "one"}), "0 0\n") << word;
		EXPECT_TRUE(actions.empty()) << word;
	}
}

// They are named in the help line for what other programs do.
TEST_F(RunLeaf, RowsWithoutAnActionAreNotKnown)
{
	for (const char *word : {"talk", "talkmore"}) {
		EXPECT_EQ(run({word}), "0 0\n") << word;
		EXPECT_EQ(run({word, "x"}), "0 0\n") << word;
	}
}

TEST_F(RunLeaf, Help)
{
	const std::string help = "0 1\nleaf: one two(once/twice) three talk talkmore(much)\n";
	EXPECT_EQ(run({"help"}), help);
	EXPECT_EQ(run({"help", "one"}), help);
	EXPECT_EQ(run({"one", "help"}, 1), help);
	EXPECT_TRUE(actions.empty());
}

TEST_F(RunLeaf, Cliid)
{
	EXPECT_EQ(run({"cliid"}), "0 1\nleaf\n");
	EXPECT_EQ(run({"cliid", "one"}), "0 1\nleaf\n");
	EXPECT_TRUE(actions.empty());
}

TEST_F(RunLeaf, NoWord)
{
	EXPECT_EQ(run({}), "0 0\n");
	for (const int start : {1, 2, 100})
		EXPECT_EQ(run({"one"}, start), "0 0\n") << start;
	EXPECT_TRUE(actions.empty());
}

} // namespace
