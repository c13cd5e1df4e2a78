// SPDX-License-Identifier: Apache-2.0
// Kinds that have something in common.
#include "kind_sets.h"

#include <algorithm>

bool is_any(const kind_t *)
{
	return true;
}

bool is_old(const kind_t *k)
{
	return !k->old_word.empty();
}

bool is_block(const kind_t *k)
{
	return k->side == side_t::BLOCK;
}

bool is_classic(const kind_t *k)
{
	return !is_block(k);
}

bool is_of_host(const kind_t *k)
{
	return k->side == side_t::HOST;
}

bool is_of_raid(const kind_t *k)
{
	return k->side == side_t::RAID || k->side == side_t::CONTROLLER;
}

bool is_of_controller(const kind_t *k)
{
	return k->side == side_t::CONTROLLER;
}

bool is_tree(const kind_t *k)
{
	return k == &DEVICES_KIND;
}

std::string words_of(kind_test_t test, bool old)
{
	std::string words;
	for (const kind_t *k : all_kinds()) {
		if (test(k) && (!old || is_old(k)))
			words.append(words.empty() ? "" : ", ").append(old ? k->old_word : k->word);
	}
	return words;
}

bool has(const kinds_t &kinds, kind_test_t test)
{
	return std::any_of(kinds.begin(), kinds.end(), test);
}
