// SPDX-License-Identifier: Apache-2.0
// What stands between a target and the running machine: a captured host made for it, and stand-ins for the
// calls that would start programs, wait, end the process or change what lies outside the host. The stand-ins
// take the calls' places by the linker's --wrap; see targets.cmake.
#ifndef DISKSCOUT_FUZZ_OUTSIDE_H
#define DISKSCOUT_FUZZ_OUTSIDE_H

#include <functional>
#include <stdio.h>
#include <string>

// A captured host in a temporary directory of its own, which goes with it. The table is that of
// docs/replay.md.
class Host
{
public:
	explicit Host(const std::string &name, const std::string &table = "");
	~Host();
	Host(const Host &) = delete;
	Host &operator=(const Host &) = delete;
	void file(const std::string &path, const std::string &text) const;
	const std::string &directory() const { return directory_; }

private:
	std::string directory_;
};

// While it lasts the process sees the host, works in its directory and says nothing on standard error.
class Visit
{
public:
	explicit Visit(const Host &host);
	~Visit();
	Visit(const Visit &) = delete;
	Visit &operator=(const Visit &) = delete;

private:
	int home_;
	FILE *stderr_;
};

// While it lasts this is typed.
class Typed
{
public:
	explicit Typed(const std::string &text);
	~Typed();
	Typed(const Typed &) = delete;
	Typed &operator=(const Typed &) = delete;

private:
	FILE *stdin_;
};

std::string content_of(const char *path);

// Whether the work ends the process, instead of which it ends the work. *status is that of the process.
bool ends_process(const std::function<void()> &work, int *status);

// The lowest descriptor that is free: as low as before when nothing stays open.
int free_descriptor();

#endif
