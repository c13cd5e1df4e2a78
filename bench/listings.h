// SPDX-License-Identifier: Apache-2.0
// Long answers of the controller tool, made for the benchmark, and the parsers that read them.
#ifndef DISKSCOUT_BENCH_LISTINGS_H
#define DISKSCOUT_BENCH_LISTINGS_H

#include <string>
#include <vector>

struct Listing {
	const char *name;
	const char *head;
	// Some rows, as they come again and again, and how many records they make.
	const char *rows;
	int records;
	// Parses a file and releases the records; returns how many there were, or -1.
	int (*parse)(const char *path);
};

extern const std::vector<Listing> LISTINGS;

// A listing in a file without a directory entry, of the size at most. Aborts when the parser does not find
// every record.
class ListingFile
{
public:
	ListingFile(const Listing &listing, size_t size);
	~ListingFile();
	ListingFile(const ListingFile &) = delete;
	ListingFile &operator=(const ListingFile &) = delete;

	void parse() const { listing_.parse(path_.c_str()); }
	size_t size() const { return size_; }

private:
	const Listing &listing_;
	int file_;
	size_t size_;
	std::string path_;
};

#endif
