// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/def.h"

const char DCHAR_BUF[2] = "/";
const char *const PDCHAR = DCHAR_BUF;

const char REDIR_PATH[FNAME_SIZE] = " >/dev/null 2>&1";
const char *const PREDIR_PATH = REDIR_PATH;
