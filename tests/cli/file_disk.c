/* Loaded before a program: every regular file answers BLKGETSIZE with its size in sectors of 512 bytes, as a
 * disk does. What a command writes to a disk can be seen to the byte this way.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdarg.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

static const unsigned long get_size = 0x1260;

typedef int (*ioctl_type)(int fd, unsigned long request, ...);

int ioctl(int fd, unsigned long request, ...)
{
	ioctl_type next;
	struct stat status;
	va_list arguments;
	void *argument;

	va_start(arguments, request);
	argument = va_arg(arguments, void *);
	va_end(arguments);
	if (request == get_size && fstat(fd, &status) == 0 && S_ISREG(status.st_mode)) {
		*(unsigned long *)argument = (unsigned long)status.st_size / 512;
		return 0;
	}
	*(void **)&next = dlsym(RTLD_NEXT, "ioctl");
	return next(fd, request, argument);
}
