// SPDX-License-Identifier: Apache-2.0
// The controller tool's configuration, in the order in which an operation meets it.
#include "check.h"
#include "site_file.h"
#include "site_programs.h"
#include "site_surroundings.h"

#include <iterator>

static const check_t CHECKS[] = {
	{"config_missing", "Is there a configuration of the controller tool?",
         "The file that the plug-in names is opened. A host where nobody has named one and which has none at "
         "the usual place has no RAID controller tool, and needs none.",
         "where there is a RAID controller, write the lines \"Cli Path:\", \"Cli Name:\" and \"Filter "
         "Script:\" into it, or name the file that has them with --config",
         RAID_FAILED, false, missing_configuration},
	{"config_directory", "Is the configuration a file?", "It is read.",
         "name the file in the directory with --config", RAID_FAILED, false, directory_for_configuration},
	{"config_unreadable", "Can the configuration be read?", "It is read.",
         "run this as root, who owns the configuration", RAID_FAILED, false, unreadable_configuration},
	{"config_long_line", "Is every line of the configuration read whole?",
         "Lines that begin with a key are measured: 255 characters are read.",
         "put the programs where their paths are shorter", RAID_FAILED, false, long_lines},
	{"config_spelling", "Are the keys of the configuration spelt as they are looked for?",
         "Lines are compared with the keys without regard to upper and lower case, blanks and \"=\".",
         "write the key as it is told here, at the very start of its line, with a colon and no blank before "
         "it",
         RAID_FAILED, false, misspelt_keys},
	{"config_key", "Does the configuration name directory, tool and filter?",
         "The keys \"Cli Path:\", \"Cli Name:\" and \"Filter Script:\" are looked for.",
         "add the line with the key and its value", RAID_FAILED, false, missing_keys},
	{"program_shell", "Are tool and filter named by plain paths?",
         "The paths are searched for characters that the shell takes for something else.",
         "put the program where its path is plain: the words become parts of a shell command", RAID_FAILED,
         false, names_for_the_shell},
	{"program_blank", "Are the paths of tool and filter without blanks?",
         "Blanks are looked for before a path and in it.",
         "write the path right behind the colon; put the program where its path holds no blank", RAID_FAILED,
         false, names_with_blanks},
	{"program_name", "Is the name of the tool a name?",
         "A name that holds a slash is tried with the path before it.",
         "write the directory behind \"Cli Path:\" and the file's name alone behind \"Cli Name:\"",
         RAID_FAILED, false, names_that_are_paths},
	{"program_relative", "Are tool and filter named by full paths?",
         "Paths are to begin with a slash; a filter without any slash is looked for in PATH.",
         "write the full path: the programs run the tool in a private directory", RAID_FAILED, false,
         relative_programs},
	{"program_missing", "Are tool and filter there?", "The files are looked at.",
         "install the program, or correct its path in the configuration", RAID_FAILED, false,
         missing_programs},
	{"program_not_executable", "Can tool and filter be executed?",
         "This process's permission is asked for.",
         "make the file executable with chmod; look whether its filesystem is mounted with noexec",
         RAID_FAILED, false, programs_not_executable},
	{"program_interpreter", "Is what a script runs in there?", "The line behind \"#!\" is read.",
         "install the interpreter, or correct the script's first line, line ends included", RAID_FAILED,
         false, missing_interpreters},
	{"run_directory", "Can the files of a run be made?",
         "This process's permission for TMPDIR, or /tmp, is asked for.",
         "name a directory that can be written in the environment variable TMPDIR", RAID_FAILED, false,
         bad_run_directory},
	{"run_directory_full", "Is there room for the files of a run?",
         "The filesystem of TMPDIR, or /tmp, is asked for free space and files.",
         "make room, or name another directory in the environment variable TMPDIR", RAID_FAILED, false,
         full_run_directory},
	{"path_rm", "Does the shell find rm?", "The directories of PATH are searched.",
         "start the program with a PATH that names /bin or /usr/bin", RAID_FAILED, false, path_without_rm},
	// Nothing fails for it.
	{"config_writable", "Can nobody but root write what is run as root?",
         "Owner and mode of the configuration, of tool and filter, and of their directories are looked at.",
         "give the file to root and take the others' right to write: who can write it can run any command", 0,
         false, writable_by_others},
};

const checks_t SITE_CHECKS = {CHECKS, std::size(CHECKS)};
