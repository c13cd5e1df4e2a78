// The parsers of the controller tool's output and of the software-RAID table, each tried on a file of any
// content: it has to end with a code that its header names and to hand out records that keep their promises.
// The fuzzer asks here, and so does the test of what the fuzzer has found.
#ifndef DISKSCOUT_FUZZ_PARSERS_H
#define DISKSCOUT_FUZZ_PARSERS_H

#include <string>
#include <vector>

struct Parser {
	const char *name;
	// Parses the file, looks at every record and releases all. Returns what is wrong; empty: nothing.
	std::string (*check)(const char *path);
};

extern const std::vector<Parser> PARSERS;

// Null for a name that is none.
const Parser *find_parser(const std::string &name);

// The text helpers. The first two lines of the file are what is looked for and what takes its place, the
// third and all behind it the text.
std::string check_text(const char *path);

// The parser of the software-RAID table.
std::string check_mdstat(const char *path);

#endif
