// SPDX-License-Identifier: Apache-2.0
// The environment of a child started by popen() or system().
#ifndef DISKSCOUT_REPLAY_CHILD_H
#define DISKSCOUT_REPLAY_CHILD_H

namespace replay
{

// While one lives, a shell started by the C library gets the preload library and the host shown. The
// program's own environment is not touched: setenv would keep every value it was ever given.
class ChildEnvironment
{
public:
	// False, with errno set, when the environment is too large to be rebuilt.
	bool install();
	~ChildEnvironment();

private:
	char **saved_ = nullptr;
};

} // namespace replay

#endif
