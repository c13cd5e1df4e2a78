// SPDX-License-Identifier: Apache-2.0
// The sorted listing of a directory.
#ifndef DISKSCOUT_HDD_SAL_0_DIR_H
#define DISKSCOUT_HDD_SAL_0_DIR_H

#include <dirent.h>

// Holds the names of a directory's entries, in alphabetical order, until the scope ends.
class Listing
{
public:
	// select, when given, decides which entries are listed: non-zero takes one.
	explicit Listing(const char *path, int (*select)(const dirent *) = nullptr);
	~Listing();
	Listing(const Listing &) = delete;
	Listing &operator=(const Listing &) = delete;

	bool is_read() const { return count_ >= 0; }
	int count() const { return count_ > 0 ? count_ : 0; }
	const char *name(int i) const { return entries_[i]->d_name; }

private:
	dirent **entries_ = nullptr;
	int count_;
};

#endif
