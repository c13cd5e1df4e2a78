/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The commands of the plug-in whose answers are made by hand. A command tells on standard error what it was
 * called with:
 *
 *   argc 3 ZERO 1
 *   [stcli]
 *   [first word]
 *   [second word]
 *   null
 *
 * and returns FAKE_PLUGIN_STATUS, or 0. "help" prints lines as the plug-in's own entry point and command tree
 * do; "read" shows a line of standard input, and takes no byte behind it.
 */
#include "fake_plugin.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static int status(void)
{
	const char *const text = getenv("FAKE_PLUGIN_STATUS");
	return text ? atoi(text) : 0;
}

static void tell_help(void)
{
	fputs("stcli: Hello world!\nleaf_1: one two\n", stderr);
	fputs("leaf_2: stcli: three\nstcli: Ok!\n", stderr);
}

static void show_line(void)
{
	char c;
	while (read(STDIN_FILENO, &c, 1) == 1 && c != '\n')
		fputc(c, stderr);
	fputc('\n', stderr);
}

static void show_words(int argc, char **argv, int ZERO)
{
	int i;
	fprintf(stderr, "argc %d ZERO %d\n", argc, ZERO);
	for (i = 0; i < argc; i++) {
		fprintf(stderr, "[%s]\n", argv[i]);
		/* The words are the plug-in's to write to. */
		memset(argv[i], 'x', strlen(argv[i]));
	}
	fputs(argv[argc] ? "no null\n" : "null\n", stderr);
}

int stcli(int argc, char **argv, int ZERO)
{
	look_at_descriptors();
	if (argc > ZERO && strcmp(argv[ZERO], "help") == 0)
		tell_help();
	else if (argc > ZERO && strcmp(argv[ZERO], "read") == 0)
		show_line();
	else
		show_words(argc, argv, ZERO);
	return status();
}
