// SPDX-License-Identifier: Apache-2.0
// Errors that have the same cause wherever they are met.
#include "finding.h"

#include <cerrno>

static const char OF_ROOT[] =
	"this process is root's, and is kept from it all the same: look for a container, or "
	"a security module such as SELinux";

std::string advice_for(int error, const inherited_t &who)
{
	switch (error) {
	case EMFILE:
		return "let whoever starts this process allow it more open files (ulimit -n 1024)";
	case ENFILE:
		return "look with lsof who has so many files open: the machine allows no more";
	case ENOMEM:
		return "look what has taken the memory of this machine";
	case EACCES:
	case EPERM:
		return who.is_root ? OF_ROOT : "";
	default:
		return "";
	}
}
