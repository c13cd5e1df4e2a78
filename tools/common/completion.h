// SPDX-License-Identifier: Apache-2.0
// What can stand in the place of a word that is being typed. The shells' scripts (tools/completion) hand over
// the words of the command line, behind the program's name and a word that asks for this:
//
//   diskscout complete [--at=N] [WORD]...
//
// The N-th WORD is the one that is being typed, the last one if that is not said, an empty one when there is
// none. The answer begins with what kind of thing is wanted; words stand behind it with what they mean:
//
//   :words
//   list<TAB>show what there is
#ifndef DISKSCOUT_TOOLS_COMMON_COMPLETION_H
#define DISKSCOUT_TOOLS_COMMON_COMPLETION_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

struct candidate_t {
	std::string word;
	std::string what; // may be empty
};
using candidates_t = std::vector<candidate_t>;

// Of the candidates those are shown that begin with the typed word; files and directories the shell knows.
struct completion_t {
	enum place_t { WORDS, LIST /* of words with commas, which may go on */, FILES, DIRECTORIES };

	place_t place = WORDS;
	candidates_t words = {};
};

struct known_option_t {
	std::vector<std::string> names; // with their dashes; those that help shows, behind them abbreviations
	std::size_t shown;              // so many of them
	std::string value;              // its name in the help, "DIR"; empty: a flag
	std::string what;
};
using known_options_t = std::vector<known_option_t>;

// The words of a command line, of which one is being typed.
struct typed_words_t {
	std::vector<std::string> words;
	std::size_t at = 0;
};

// Takes the words behind the one that asks.
typed_words_t typed_words(std::vector<std::string> words);

// What the other words make of the one that is being typed.
struct typed_line_t {
	std::string word;   // as far as it is typed; of an option with its value the value alone
	std::string before; // that the candidates do not repeat: "--sort="
	const known_option_t *option = nullptr; // whose value it is; null: an option or an operand
	bool may_be_option = true;              // options have not ended before it
	bool is_understood = true;              // all other options are known
	std::vector<std::string> operands;      // the others
	std::size_t operands_before = 0;        // so many of them stand before it
	std::map<const known_option_t *, std::string> given; // the other options, with their values

	bool is_given(std::string_view name) const;
	std::string value_of(std::string_view name) const; // empty: it is not given
};

// Where options end: of some programs all words behind the first operand are operands.
enum class options_end_t { AT_MARK, AT_OPERAND };

// `known` has to outlive the answer.
typed_line_t read_line(const typed_words_t &typed, const known_options_t &known, options_end_t end);

// The options that are not given yet.
completion_t options_left(const known_options_t &known, const typed_line_t &line);

// What the option takes, as far as its name tells: files, directories, one of "1|2".
completion_t value_of(const known_option_t &option);

// The answer.
std::string told(const completion_t &completion, const typed_line_t &line);

#endif
