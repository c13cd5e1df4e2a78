// SPDX-License-Identifier: Apache-2.0
// The plug-in's diagnostic command line.
#include "tree.h"

#include "usage_error.h"

#include <cstdio>
#include <fcntl.h>
#include <sstream>
#include <string_view>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

// Where the command stands among the words that the plug-in gets: behind the program's name.
enum { FIRST_WORD = 1 };

command_tree_t::command_tree_t(const std::filesystem::path &file)
    : loaded_plugin_t(file), stcli_(symbol<decltype(stcli)>("stcli"))
{
}

// As main gets its words: they may be written to, and a null stands behind the last one.
bool command_tree_t::run(std::vector<std::string> words) const
{
	std::string name = "stcli";
	std::vector<char *> argv = {name.data()};
	for (std::string &word : words)
		argv.push_back(word.data());
	argv.push_back(nullptr);
	return stcli_(static_cast<int>(argv.size() - 1), argv.data(), FIRST_WORD) == 0;
}

static int checked(int result, const char *what)
{
	if (result == -1)
		throw std::system_error(errno, std::generic_category(), what);
	return result;
}

// Sends what is written to standard error into memory, as long as it lives.
class captured_error_t
{
public:
	captured_error_t()
	    : memory_(checked(memfd_create("standard error", MFD_CLOEXEC), "memory for the help")),
	      kept_(checked(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0), "standard error"))
	{
		checked(dup2(memory_, STDERR_FILENO), "standard error");
	}
	~captured_error_t()
	{
		fflush(stderr);
		dup2(kept_, STDERR_FILENO);
		close(kept_);
		close(memory_);
	}
	captured_error_t(const captured_error_t &) = delete;
	captured_error_t &operator=(const captured_error_t &) = delete;

	std::string text() const
	{
		fflush(stderr);
		std::string text;
		char piece[1024];
		lseek(memory_, 0, SEEK_SET);
		for (ssize_t n; (n = read(memory_, piece, sizeof(piece))) > 0;)
			text.append(piece, static_cast<std::size_t>(n));
		return text;
	}

private:
	int memory_;
	int kept_;
};

// The entry point says something before and behind every command; the rest is the tree's.
static std::string lines_of_tree(const std::string &printed)
{
	static constexpr std::string_view OF_ENTRY_POINT = "stcli: ";
	std::istringstream lines(printed);
	std::string result;
	for (std::string line; std::getline(lines, line);) {
		if (line.compare(0, OF_ENTRY_POINT.size(), OF_ENTRY_POINT) != 0)
			result += line + "\n";
	}
	return result;
}

std::string command_tree_t::help() const
{
	const captured_error_t captured;
	if (!run({"help"}))
		throw usage_error_t("the plug-in cannot be used: it does not tell its commands");
	return lines_of_tree(captured.text());
}
