// SPDX-License-Identifier: Apache-2.0
// What the operations share and the console and the tests use, under the one name that they know it by. The
// rooms' own sources include the header that they need: none of these includes this one.
#ifndef DISKSCOUT_HWRAID_AAC_PUBLIC_H
#define DISKSCOUT_HWRAID_AAC_PUBLIC_H

#include "hwraid/aacraid/aac_config.h"
#include "hwraid/aacraid/aac_container_list.h"
#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/aac_tool.h"

#endif
