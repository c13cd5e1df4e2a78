// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/dir.h"

#include <stdlib.h>

// Sorted as the host's locale sorts: that is what alphasort does. The drives' names sort alike in all of
// them.
Listing::Listing(const char *path, int (*select)(const dirent *))
    : count_(scandir(path, &entries_, select, alphasort))
{
}

Listing::~Listing()
{
	for (int i = 0; i < count(); i++)
		free(entries_[i]);
	if (is_read())
		free(entries_);
}
