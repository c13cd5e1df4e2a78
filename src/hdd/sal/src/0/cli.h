// SPDX-License-Identifier: Apache-2.0
// The diagnostic command line is a tree of handlers that share one signature. Inner nodes offer the words to
// their children in turn; leaves know their command words and act. All output goes to standard error.
#ifndef DISKSCOUT_HDD_SAL_0_CLI_H
#define DISKSCOUT_HDD_SAL_0_CLI_H

#include "hdd/sal/src/0/list.h"

// Examines the word argv[start]. *matched becomes the number of leaves that knew it: of a leaf 0 or 1.
// Returns 0, or -1 when one that knew it failed.
typedef int (*cli_func_t)(int argc, char **argv, int start, int *matched);

struct clinode_t {
	int tag;
	int index;
	void *parent;
	cli_func_t cli;
};

struct clilist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	clinode_t item[10];
};

// ---- inner nodes ----

// Offers the words to the children in order, until one knows them; "help" and "cliid" go to every one.
int run_node(const cli_func_t *children, size_t count, int argc, char **argv, int start, int *matched);
template <size_t count>
int run_node(const cli_func_t (&children)[count], int argc, char **argv, int start, int *matched)
{
	return run_node(children, count, argc, argv, start, matched);
}

// ---- leaves ----

// One way to use a command. Rows of one word stand together; the first one's hint follows the word in the
// help line. A row without an action stands in the help line only.
struct command_t {
	const char *word;
	const char *hint;
	int words;                      // that the command takes, itself included
	int (*run)(char *const *words); // gets the words from the command word on; 0 or -1
};

// Runs the row of the word argv[start] that takes as many words as there are; "help" and "cliid" name the
// leaf.
int run_leaf(const char *name, const command_t *commands, size_t count, int argc, char **argv, int start,
             int *matched);
template <size_t count>
int run_leaf(const char *name, const command_t (&commands)[count], int argc, char **argv, int start,
             int *matched)
{
	return run_leaf(name, commands, count, argc, argv, start, matched);
}

// The whole word as a decimal number with an optional sign. 0, or -1 when it is anything else. A number out
// of range is the nearest one.
int word_to_int64(const char *word, int64_t *value);
int word_to_int(const char *word, int *value);

// Builds a list and dumps it, an incomplete or empty one too: what the builder returned is told behind it. 0,
// or -1 when that was anything but 0.
template <class List>
int show_list(int (*parse)(List *list, filter_func_t filter, void *arg), filter_func_t filter, void *arg,
              void (*display)(const List *list))
{
	CLEARED_BY_CALLEE List list;
	const int result = parse(&list, filter, arg);
	display(&list);
	return result == 0 ? 0 : -1;
}

// The leaf of what needs no system: file names, an input line, random numbers.
int cli_0(int argc, char **argv, int start, int *matched);

#endif
