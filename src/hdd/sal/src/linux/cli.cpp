// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/linux/cli.h"

#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"
#include "hdd/sal/src/linux/mtab.h"
#include "hdd/sal/src/linux/procblk.h"
#include "hdd/sal/src/linux/procide.h"
#include "hdd/sal/src/linux/procscsi.h"
#include "hdd/sal/src/linux/raidtab.h"
#include "hdd/sal/src/linux/scsisn.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>

// ---- changes to the system ----

// Whether the output of a command that is run for somebody is silenced: always.
constexpr int REDIR_TAG = 1;

static int cmd_exec(char *const *words)
{
	const std::string_view redirection = REDIR_TAG != 0 ? PREDIR_PATH : "";
	cmd_t command;
	// compat: a command that does not fit is refused; half a command may be another command.
	if (strlen(words[1]) + redirection.size() >= sizeof command)
		return -1;
	str_copy(command, words[1]);
	str_append(command, redirection);
	const int status = system(command);
	return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : -1;
}

static int cmd_mkdev_name(char *const *words)
{
	mami_t mami;
	return maminame2mami(words[2], &mami) == 0 ? create_dev(words[1], mami) : -1;
}

static int cmd_mkdev_numbers(char *const *words)
{
	int major;
	int minor;
	if (word_to_int(words[2], &major) != 0 || word_to_int(words[3], &minor) != 0)
		return -1;
	return create_dev(words[1], make_mami(static_cast<unsigned>(major), static_cast<unsigned>(minor)));
}

static int cmd_mkdir(char *const *words)
{
	fname_t path;
	if (strlen(words[1]) >= sizeof path)
		return -1;
	str_copy(path, words[1]);
	for (char *p = path; *p != '\0'; p++) {
		if (*p != *PDCHAR || p == path)
			continue;
		*p = '\0';
		mkdir(path, 0777);
		*p = *PDCHAR;
	}
	mkdir(path, 0777);
	// What stands there now decides, whoever made it.
	struct stat status;
	return stat(path, &status) == 0 && S_ISDIR(status.st_mode) ? 0 : -1;
}

// A number that does not fit its field must not address another device.
static int words_to_idlun(char *const *words, idlun_t *idlun)
{
	uint8_t *const fields[] = {&idlun->host, &idlun->channel, &idlun->id, &idlun->lun};
	for (int i = 0; i < 4; i++) {
		int number;
		if (word_to_int(words[i], &number) != 0 || number < 0 || number > UINT8_MAX)
			return -1;
		*fields[i] = static_cast<uint8_t>(number);
	}
	return 0;
}

static int cmd_scsiadd(char *const *words)
{
	idlun_t idlun;
	return words_to_idlun(words + 1, &idlun) == 0 ? procscsi_dev_add(&idlun) : -1;
}

static int cmd_scsiremove(char *const *words)
{
	idlun_t idlun;
	return words_to_idlun(words + 1, &idlun) == 0 ? procscsi_dev_remove(&idlun) : -1;
}

static int cmd_scsishuffle(char *const *)
{
	procscsi_devlist_t list;
	const int result = parse_procscsi_devlist(&list, nullptr, nullptr);
	scsi_shuffle(&list);
	return result;
}

// ---- tables ----

static int cmd_mtab(char *const *)
{
	return show_list(parse_mtab_mntlist, nullptr, nullptr, display_mtab_mntlist);
}

static int cmd_mtab_filtered(char *const *words)
{
	static const struct {
		const char *word;
		filter_func_t filter;
	} FILTERS[] = {{"dev", filter_mtab_mnt_in_dev}, {"mnt", filter_mtab_mnt_in_mnt}};

	for (const auto &row : FILTERS)
		if (strcmp(words[1], row.word) == 0)
			return show_list(parse_mtab_mntlist, row.filter, words[2], display_mtab_mntlist);
	return -1;
}

static int cmd_procblk(char *const *)
{
	return show_list(parse_procblk_devlist, filter_procblk_is_disk, nullptr, display_procblk_devlist);
}

static int cmd_procblk_disk(char *const *words)
{
	return show_list(parse_procblk_devlist, filter_procblk_is_part, words[1], display_procblk_devlist);
}

static int cmd_procide(char *const *)
{
	return show_list(parse_procide_devlist, nullptr, nullptr, display_procide_devlist);
}

static int cmd_procscsi(char *const *)
{
	return show_list(parse_procscsi_devlist, nullptr, nullptr, display_procscsi_devlist);
}

static int cmd_procscsihost(char *const *)
{
	return show_list(parse_procscsi_hostlist, nullptr, nullptr, display_procscsi_hostlist);
}

static int cmd_raidtab(char *const *words)
{
	CLEARED_BY_CALLEE raidtab_devlist_t list;
	const int result = read_raidtab_devlist(words[1], &list, nullptr, nullptr);
	display_raidtab_devlist(&list);
	return result;
}

// ---- single answers ----

static int cmd_scsisn(char *const *words)
{
	str_t sn;
	if (get_scsi_device_sn_by_path(words[1], sn) != 0)
		return -1;
	fprintf(stderr, "%s %s\n", "sn =", sn);
	return 0;
}

static int cmd_uptime(char *const *)
{
	const int seconds = get_uptime();
	fprintf(stderr, "%s %d\n", "uptime", seconds);
	return seconds < 0 ? -1 : 0;
}

static const command_t COMMANDS[] = {
	{"exec", "", 2, cmd_exec},
	{"mdsb", "", 2, cmd_mdsb},
	{"mdsb", "", 3, cmd_mdsb_clear},
	{"mdspeed", "(default/max)", 1, cmd_mdspeed},
	{"mdspeed", "", 2, cmd_mdspeed_preset},
	{"mdspeed", "", 3, cmd_mdspeed_limits},
	{"mdstat", "", 1, cmd_mdstat},
	{"mkdev", "", 3, cmd_mkdev_name},
	{"mkdev", "", 4, cmd_mkdev_numbers},
	{"mkdir", "", 2, cmd_mkdir},
	{"mtab", "(dev/mnt)", 1, cmd_mtab},
	{"mtab", "", 3, cmd_mtab_filtered},
	{"procblk", "", 1, cmd_procblk},
	{"procblk", "", 2, cmd_procblk_disk},
	{"procide", "", 1, cmd_procide},
	{"procscsi", "", 1, cmd_procscsi},
	{"procscsihost", "", 1, cmd_procscsihost},
	{"raidtab", "", 2, cmd_raidtab},
	{"scsiadd", "", 5, cmd_scsiadd},
	{"scsiremove", "", 5, cmd_scsiremove},
	{"scsishuffle", "", 1, cmd_scsishuffle},
	{"scsisn", "", 2, cmd_scsisn},
	{"uptime", "", 1, cmd_uptime},
	// compat: announced, and known to no handler: old scripts look for them in the help line.
	{"xml", "", 0, nullptr},
	{"xmlnew", "", 0, nullptr},
};

int cli_linux(int argc, char **argv, int start, int *matched)
{
	return run_leaf("cli_linux", COMMANDS, argc, argv, start, matched);
}

// ---- nodes ----

int cli_os(int argc, char **argv, int start, int *matched)
{
	return cli_linux(argc, argv, start, matched);
}

int cli_sal(int argc, char **argv, int start, int *matched)
{
	static const cli_func_t CHILDREN[] = {cli_0, cli_os, cli_1};
	return run_node(CHILDREN, argc, argv, start, matched);
}
