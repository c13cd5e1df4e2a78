// SPDX-License-Identifier: Apache-2.0
// What stands between the modules and the C library in this test program: memory that ends, and a look at
// what is opened. The linker puts it there; see CMakeLists.txt.
#ifndef DISKSCOUT_TESTS_BLOCK_OUTSIDE_H
#define DISKSCOUT_TESTS_BLOCK_OUTSIDE_H

#include <functional>
#include <string>

// Blocks of memory that the modules hold.
long blocks_held();

// The nth block from here is refused, and with `from_there_on` all later ones; 0: none. Says whether it has
// come to that.
void refuse_block(long nth, bool from_there_on);
bool was_refused();

// While it lasts `look` is called with the path of each file before it is opened, as it is named there.
class Watch
{
public:
	explicit Watch(std::function<void(const std::string &path)> look);
	Watch(const Watch &) = delete;
	Watch &operator=(const Watch &) = delete;
	~Watch();
};

// Descriptors that are open.
int descriptors_open();

#endif
