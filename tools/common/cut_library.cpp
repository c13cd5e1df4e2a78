// SPDX-License-Identifier: Apache-2.0
// Libraries of which only the beginning is there.
#include "cut_library.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <link.h>
#include <sys/syscall.h>
#include <unistd.h>

/*
 * The file, as the loader sees it: it asks the kernel itself. Calls of the C library may be answered for a
 * captured host, which has no such file.
 */
class library_t
{
public:
	explicit library_t(const std::filesystem::path &file)
	    : file_(syscall(SYS_openat, AT_FDCWD, file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
	{
	}
	~library_t() { syscall(SYS_close, file_); }
	library_t(const library_t &) = delete;
	library_t &operator=(const library_t &) = delete;

	template <typename Record> bool read_at(std::uint64_t offset, Record *into) const
	{
		return syscall(SYS_pread64, file_, into, sizeof *into, offset) ==
		       static_cast<long>(sizeof *into);
	}

private:
	const long file_;
};

// Where the last part ends that is to be loaded; 0 for what is no library of this machine.
static std::uint64_t end_of_parts(const library_t &library)
{
	ElfW(Ehdr) head;
	if (!library.read_at(0, &head) || memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 ||
	    head.e_phentsize != sizeof(ElfW(Phdr)))
		return 0;
	std::uint64_t end = 0;
	for (unsigned i = 0; i < head.e_phnum; i++) {
		ElfW(Phdr) part;
		if (!library.read_at(head.e_phoff + i * sizeof part, &part))
			return 0;
		if (part.p_type == PT_LOAD)
			end = std::max<std::uint64_t>(end, part.p_offset + part.p_filesz);
	}
	return end;
}

bool is_cut_library(const std::filesystem::path &file)
{
	const library_t library(file);
	const std::uint64_t end = end_of_parts(library);
	char last;
	return end > 0 && !library.read_at(end - 1, &last);
}
