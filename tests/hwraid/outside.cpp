// SPDX-License-Identifier: Apache-2.0
#include "outside.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <uuid/uuid.h>

outside_t outside;

template <class Function> static Function *the_c_library_s(Function *, const char *name)
{
	return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

#define REAL(name) the_c_library_s(name, #name)

static bool fails(int error)
{
	errno = error;
	return true;
}

extern "C" int setenv(const char *name, const char *value, int overwrite) noexcept
{
	if (outside.setenv_fails && fails(ENOMEM))
		return -1;
	return REAL(setenv)(name, value, overwrite);
}

extern "C" FILE *fdopen(int fd, const char *mode) noexcept
{
	if (outside.fdopen_fails && fails(ENOMEM))
		return nullptr;
	return REAL(fdopen)(fd, mode);
}

extern "C" int open(const char *path, int flags, ...)
{
	va_list arguments;
	va_start(arguments, flags);
	const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
	va_end(arguments);
	const bool exclusive = (flags & O_EXCL) != 0;
	if (exclusive && outside.failing_creation > 0 && --outside.failing_creation == 0 && fails(EDQUOT))
		return -1;
	return REAL(open)(path, flags, mode);
}

extern "C" int stat(const char *path, struct stat *status) noexcept
{
	const int result = fstatat(AT_FDCWD, path, status, 0);
	if (result == 0 && outside.looked_at)
		outside.looked_at(path);
	return result;
}

extern "C" int system(const char *command)
{
	outside.commands.emplace_back(command);
	return REAL(system)(command);
}

extern "C" void uuid_generate(uuid_t id)
{
	if (outside.first_name == 0)
		REAL(uuid_generate)(id);
	else
		memset(id, 0x11 * outside.first_name++, sizeof(uuid_t));
}
