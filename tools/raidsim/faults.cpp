// SPDX-License-Identifier: Apache-2.0
// The words of RAIDSIM_FAULT.
#include "faults.h"

#include "text.h"

#include <algorithm>
#include <fmt/format.h>

struct plain_word_t {
	const char *word;
	bool faults_t::*field;
	bool value;
};

static const plain_word_t PLAIN_WORDS[] = {
	{"busy", &faults_t::busy, true},         {"missing", &faults_t::missing, true},
	{"kill", &faults_t::kill, true},         {"flood", &faults_t::flood, true},
	{"terminal", &faults_t::terminal, true}, {"status", &faults_t::status, true},
	{"noblank", &faults_t::noblank, true},   {"blank", &faults_t::noblank, false},
};

struct number_word_t {
	const char *word;
	std::int64_t least;
	std::int64_t most;
	void (*set)(faults_t &, std::int64_t);
};

static const number_word_t NUMBER_WORDS[] = {
	{"exit", 1, 255, [](faults_t &f, std::int64_t n) { f.exit = n; }},
	{"cut", 0, INT64_C(1) << 30, [](faults_t &f, std::int64_t n) { f.cut = n; }},
	{"slow", 0, 600000, [](faults_t &f, std::int64_t n) { f.slow = n; }},
	{"pager", 1, 1000, [](faults_t &f, std::int64_t n) { f.pager = n; }},
};

static bool set_plain(faults_t &f, std::string_view word)
{
	for (const plain_word_t &p : PLAIN_WORDS) {
		if (word == p.word) {
			f.*p.field = p.value;
			return true;
		}
	}
	return false;
}

static bool set_number(faults_t &f, std::string_view word)
{
	const std::size_t equals = word.find('=');
	if (equals == std::string_view::npos)
		return false;
	for (const number_word_t &n : NUMBER_WORDS) {
		if (word.substr(0, equals) != n.word)
			continue;
		const std::optional<std::int64_t> value = number_of(word.substr(equals + 1), n.most);
		if (!value || *value < n.least)
			return false;
		n.set(f, *value);
		return true;
	}
	return false;
}

faults_t faults_of(std::string_view words)
{
	faults_t f;
	while (!words.empty()) {
		const std::size_t length = std::min(words.find(','), words.size());
		const std::string_view word = trimmed(words.substr(0, length));
		words.remove_prefix(std::min(length + 1, words.size()));
		// A misspelt fault would be a test that tests nothing.
		if (!word.empty() && !set_plain(f, word) && !set_number(f, word))
			throw fault_error_t(fmt::format("RAIDSIM_FAULT: \"{}\" is not known", word));
	}
	return f;
}
