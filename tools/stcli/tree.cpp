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

command_tree::command_tree(const std::filesystem::path &file)
    : loaded_plugin(file), m_stcli(symbol<decltype(stcli)>("stcli"))
{
}

// As main gets its words: they may be written to, and a null stands behind the last one.
bool command_tree::run(std::vector<std::string> words) const
{
	std::string name = "stcli";
	std::vector<char *> argv = {name.data()};
	for (std::string &word : words)
		argv.push_back(word.data());
	argv.push_back(nullptr);
	return m_stcli(static_cast<int>(argv.size() - 1), argv.data(), FIRST_WORD) == 0;
}

static int checked(int result, const char *what)
{
	if (result == -1)
		throw std::system_error(errno, std::generic_category(), what);
	return result;
}

// Sends what is written to standard error into memory, as long as it lives.
class captured_error
{
public:
	captured_error()
	    : m_memory(checked(memfd_create("standard error", MFD_CLOEXEC), "memory for the help")),
	      m_kept(checked(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0), "standard error"))
	{
		checked(dup2(m_memory, STDERR_FILENO), "standard error");
	}
	~captured_error()
	{
		fflush(stderr);
		dup2(m_kept, STDERR_FILENO);
		close(m_kept);
		close(m_memory);
	}
	captured_error(const captured_error &) = delete;
	captured_error &operator=(const captured_error &) = delete;

	std::string text() const
	{
		fflush(stderr);
		std::string text;
		char piece[1024];
		lseek(m_memory, 0, SEEK_SET);
		for (ssize_t n; (n = read(m_memory, piece, sizeof(piece))) > 0;)
			text.append(piece, static_cast<std::size_t>(n));
		return text;
	}

private:
	int m_memory;
	int m_kept;
};

// The entry point says something before and behind every command; the rest is the tree's.
static std::string lines_of_tree(const std::string &printed)
{
	static constexpr std::string_view of_entry_point = "stcli: ";
	std::istringstream lines(printed);
	std::string result;
	for (std::string line; std::getline(lines, line);) {
		if (line.compare(0, of_entry_point.size(), of_entry_point) != 0)
			result += line + "\n";
	}
	return result;
}

std::string command_tree::help() const
{
	const captured_error captured;
	if (!run({"help"}))
		throw usage_error("the plug-in cannot be used: it does not tell its commands");
	return lines_of_tree(captured.text());
}
