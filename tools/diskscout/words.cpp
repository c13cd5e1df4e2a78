// SPDX-License-Identifier: Apache-2.0
// The words behind the command: kinds and devices.
#include "words.h"

#include "closest_word.h"
#include "kind_sets.h"
#include "usage_error.h"

#include <algorithm>
#include <fmt/format.h>

static const kind_t *kind_named(std::string_view word, bool old)
{
	for (const kind_t *k : all_kinds()) {
		if ((is_old(k) && word == k->old_word) || (!old && word == k->word))
			return k;
	}
	return nullptr;
}

// What a mistyped word may have meant. A name below /dev is a device's, which only its path can tell.
static std::string hint_for(const std::string &word)
{
	std::vector<std::string_view> known;
	for (const kind_t *k : all_kinds())
		known.push_back(k->word);
	std::string hint = suggestion(word, known);
	if (!hint.empty())
		return hint;
	const std::string known_words = ", known are " + words_of(is_any);
	return known_words + fmt::format("; a device is named by its path, such as /dev/{}", word);
}

[[noreturn]] static void refuse_kind(const std::string &word, bool old)
{
	throw usage_error_t(fmt::format("unknown kind \"{}\"{}", word,
	                                old ? ", known are " + words_of(is_old, true) : hint_for(word)));
}

static kinds_t kinds_unasked(const options_t &opts)
{
	const unsigned wanted = opts.json ? IN_DOCUMENT : IN_TABLES;
	kinds_t kinds;
	for (const kind_t *k : all_kinds()) {
		if (opts.classic ? is_of_host(k) : (k->unasked & wanted) != 0)
			kinds.push_back(k);
	}
	return kinds;
}

// Words with a "/" are devices, all others kinds.
void take_words(const std::vector<std::string> &words, options_t &opts)
{
	kinds_t named;
	for (const std::string &word : words) {
		const kind_t *const k = kind_named(word, opts.is_old());
		if (k)
			named.push_back(k);
		else if (!opts.is_old() && word.find('/') != std::string::npos)
			opts.devices.push_back(word);
		else
			refuse_kind(word, opts.is_old());
	}
	opts.is_alone = words.empty();
	if (named.empty() && !opts.devices.empty())
		named.push_back(&DEVICES_KIND);
	if (named.empty()) {
		opts.kinds = kinds_unasked(opts);
		return;
	}
	for (const kind_t *k : all_kinds()) {
		if (std::find(named.begin(), named.end(), k) != named.end())
			opts.kinds.push_back(k);
	}
}
