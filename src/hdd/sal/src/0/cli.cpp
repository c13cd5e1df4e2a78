// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/cli.h"

#include "base/text.h"

// The word at which the command begins; null when there is none.
static const char *first_word(int argc, char **argv, int start)
{
	return start >= 0 && start < argc ? argv[start] : nullptr;
}

static bool is_word(const char *word, const char *wanted)
{
	return strcmp(word, wanted) == 0;
}

static bool is_for_all(const char *word)
{
	return is_word(word, "help") || is_word(word, "cliid");
}

// ---- inner nodes ----

static void add_children(clilist_t *list, const cli_func_t *children, size_t count)
{
	list_clear(list);
	for (size_t i = 0; i < count; i++) {
		clinode_t node = {};
		node.cli = children[i];
		list_add(list, LIST_FIRST_FREE, node);
	}
}

int run_node(const cli_func_t *children, size_t count, int argc, char **argv, int start, int *matched)
{
	clilist_t list;
	add_children(&list, children, count);

	*matched = 0;
	const char *word = first_word(argc, argv, start);
	if (!word)
		return 0;

	const bool for_all = is_for_all(word);
	int result = 0;
	int child_matched = 0;
	for (const clinode_t &node : live_items(list)) {
		if (!node.cli)
			continue;
		if (node.cli(argc, argv, start, &child_matched) != 0 && child_matched != 0)
			result = -1;
		*matched += child_matched;
		if (child_matched != 0 && !for_all)
			break;
	}
	return for_all ? 0 : result;
}

// ---- leaves ----

static void print_help(const char *name, const command_t *commands, size_t count)
{
	fprintf(stderr, "%s:", name);
	for (size_t i = 0; i < count; i++)
		if (i == 0 || !is_word(commands[i].word, commands[i - 1].word))
			fprintf(stderr, " %s%s", commands[i].word, commands[i].hint);
	fputs("\n", stderr);
}

// Prints what "help" and "cliid" ask for. False for any other word.
static bool run_for_all(const char *word, const char *name, const command_t *commands, size_t count)
{
	if (is_word(word, "help"))
		print_help(name, commands, count);
	else if (is_word(word, "cliid"))
		fprintf(stderr, "%s\n", name);
	else
		return false;
	return true;
}

int run_leaf(const char *name, const command_t *commands, size_t count, int argc, char **argv, int start,
             int *matched)
{
	*matched = 0;
	const char *word = first_word(argc, argv, start);
	if (!word)
		return 0;
	if (run_for_all(word, name, commands, count)) {
		*matched = 1;
		return 0;
	}

	for (size_t i = 0; i < count; i++) {
		if (!commands[i].run || !is_word(commands[i].word, word))
			continue;
		*matched = 1;
		if (commands[i].words == argc - start)
			return commands[i].run(argv + start);
	}
	// Known or not: no row takes this many words.
	return *matched == 0 ? 0 : -1;
}

// ---- words ----

template <class Number> static int whole_word(std::string_view word, Number *value)
{
	Number number;
	if (!take_decimal(&word, &number) || !word.empty())
		return -1;
	*value = number;
	return 0;
}

int word_to_int64(const char *word, int64_t *value)
{
	return whole_word(word, value);
}

int word_to_int(const char *word, int *value)
{
	return whole_word(word, value);
}
