// SPDX-License-Identifier: Apache-2.0
// What a check says when a promise was broken, and promises that several records make.
#ifndef DISKSCOUT_FUZZ_PROMISES_H
#define DISKSCOUT_FUZZ_PROMISES_H

#include <algorithm>
#include <initializer_list>
#include <string.h>
#include <string>

struct Promise {
	bool kept;
	const char *what;
};

inline std::string broken(std::initializer_list<Promise> promises)
{
	for (const Promise &promise : promises)
		if (!promise.kept)
			return promise.what;
	return "";
}

inline std::string wrong_code(int code, std::initializer_list<int> documented)
{
	if (std::find(documented.begin(), documented.end(), code) != documented.end())
		return "";
	return "result " + std::to_string(code);
}

template <size_t size> bool ends(const char (&text)[size])
{
	return strnlen(text, size) < size;
}

inline bool is_between(int value, int least, int most)
{
	return value >= least && value <= most;
}

template <class Record> bool is_zero(const Record &record)
{
	const auto *bytes = reinterpret_cast<const char *>(&record);
	return std::all_of(bytes, bytes + sizeof record, [](char byte) { return byte == 0; });
}

#endif
