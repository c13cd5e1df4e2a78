// SPDX-License-Identifier: Apache-2.0
// The state's one text file: read whole, replaced whole.
#include "state_file.h"

#include "sample.h"
#include "state_text.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

static std::string text_of_file(const std::string &path)
{
	std::ifstream file(path);
	std::ostringstream text;
	text << file.rdbuf();
	if (!file || file.bad())
		throw state_error_t(path + " cannot be read");
	return text.str();
}

static bool write_and_sync(int fd, const std::string &text)
{
	std::size_t written = 0;
	while (written < text.size()) {
		const ssize_t n = write(fd, text.data() + written, text.size() - written);
		if (n < 0 && errno == EINTR)
			continue;
		if (n <= 0)
			return false;
		written += static_cast<std::size_t>(n);
	}
	return fsync(fd) == 0;
}

// Beside the file, because a rename does not cross file systems.
static void replace_file(const std::string &path, const std::string &text)
{
	std::string temporary = path + ".XXXXXX";
	const int fd = mkostemp(temporary.data(), O_CLOEXEC);
	if (fd < 0)
		throw state_error_t(fmt::format("{}: {}", temporary, strerror(errno)));
	bool good = write_and_sync(fd, text) && fchmod(fd, 0644) == 0;
	good = close(fd) == 0 && good;
	if (good && rename(temporary.c_str(), path.c_str()) == 0)
		return;
	const int error = errno;
	unlink(temporary.c_str());
	throw state_error_t(fmt::format("{} cannot be written: {}", path, strerror(error)));
}

state_t load_state(const std::string &path)
{
	if (access(path.c_str(), F_OK) != 0)
		replace_file(path, state_as_text(state_from_text(SAMPLE_STATE)));
	try {
		return state_from_text(text_of_file(path));
	} catch (const state_error_t &error) {
		throw state_error_t(fmt::format("{}: {}", path, error.what()));
	}
}

void save_state(const std::string &path, const state_t &all)
{
	const std::string text = state_as_text(all);
	if (text != state_as_text(state_from_text(text_of_file(path))))
		replace_file(path, text);
}
