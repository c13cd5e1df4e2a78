// SPDX-License-Identifier: Apache-2.0
#include "hdd/cli.h"

#include "display.h"
#include "hdd/exe/cli.h"
#include "hdd/hdd.h"

#include <errno.h>
#include <time.h>

// The leak diagnostics: a query and its release leave them as they were.
static void print_counters()
{
	fprintf(stderr, "MEMORY_COUNTER    hdd    : %d\n", memory_counter_hdd);
	fprintf(stderr, "MEMORY_COUNTER    hwraid : %d\n", memory_counter_hwraid);
}

// ---- one kind of record ----

struct kind_t {
	UINT query; // its release code is one more
	void (*display)(const void *head, int count);
};

static constexpr kind_t DISKS = {CMD_GET_DISKS, display_stdisk};
static constexpr kind_t CDROMS = {CMD_GET_CDROMS, display_stcdrom};
static constexpr kind_t PARTS = {CMD_GET_PARTITIONS, display_stpart};

// An agent's list of one kind.
struct answer_t {
	void *head;
	int count;
};

static int query(const kind_t &kind, answer_t *answer)
{
	IPMICOMMAND cmd = {};
	cmd.nCommand = kind.query;
	return GetItemInfo_hdd(&cmd, &answer->head, &answer->count);
}

static void release(const kind_t &kind, answer_t *answer)
{
	IPMICOMMAND cmd = {};
	cmd.nCommand = kind.query + 1;
	SetItemInfo_hdd(&cmd, &answer->head);
}

// compat: a success whatever the query returned: what it has found is shown, and a failure seen by that
// alone.
static int show_kind(const kind_t &kind)
{
	answer_t answer = {};
	print_counters();
	query(kind, &answer);
	kind.display(answer.head, answer.count);
	release(kind, &answer);
	print_counters();
	return 0;
}

static int cmd_stdisk(char *const *)
{
	return show_kind(DISKS);
}

static int cmd_stcdrom(char *const *)
{
	return show_kind(CDROMS);
}

static int cmd_stpart(char *const *)
{
	return show_kind(PARTS);
}

// ---- all kinds, again and again ----

constexpr int KINDS = 3;
static constexpr kind_t TESTED[KINDS] = {DISKS, CDROMS, PARTS};

static int run_round(answer_t *answers)
{
	for (int i = 0; i < KINDS; i++)
		if (query(TESTED[i], &answers[i]) != 0)
			return -1;
	for (int i = 0; i < KINDS; i++)
		TESTED[i].display(answers[i].head, answers[i].count);
	print_counters();
	return 0;
}

// Time to plug something in or out; a signal that the host handles does not shorten it.
static void pause_between_rounds()
{
	timespec left = {2, 0};
	while (nanosleep(&left, &left) != 0 && errno == EINTR)
		continue;
}

static int cmd_sttest(char *const *words)
{
	int rounds = 0;
	word_to_int(words[1], &rounds); // no number: no round

	answer_t answers[KINDS] = {};
	print_counters();
	for (int round = 0; round < rounds; round++) {
		if (round != 0)
			pause_between_rounds();
		// compat: nothing is released: the counters go on telling what the failed query left.
		if (run_round(answers) != 0)
			return -1;
	}
	for (int i = 0; i < KINDS; i++)
		release(TESTED[i], &answers[i]);
	print_counters();
	return 0;
}

static const command_t COMMANDS[] = {
	{"stdisk", "", 1, cmd_stdisk},
	{"stcdrom", "", 1, cmd_stcdrom},
	{"stpart", "", 1, cmd_stpart},
	{"sttest", "", 2, cmd_sttest},
};

int clifunc_hdd(int argc, char **argv, int start, int *matched)
{
	return run_leaf("clifunc_hdd", COMMANDS, argc, argv, start, matched);
}

int cli_hdd(int argc, char **argv, int start, int *matched)
{
	static const cli_func_t CHILDREN[] = {cli_exe, clifunc_hdd};
	return run_node(CHILDREN, argc, argv, start, matched);
}
