// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/linux/def-devio.h"

#include "base/text.h"
#include "hdd/sal/src/0/fn.h"

const char PROCSCSISCSI_PATH[FNAME_SIZE] = "/proc/scsi/scsi";
const char *const PPROCSCSISCSI_PATH = PROCSCSISCSI_PATH;
const char PROCSCSI_PATH[FNAME_SIZE] = "/proc/scsi";
const char *const PPROCSCSI_PATH = PROCSCSI_PATH;
const char PROCIDE_PATH[FNAME_SIZE] = "/proc/ide";
const char *const PPROCIDE_PATH = PROCIDE_PATH;
const char PROCBLK_PATH[FNAME_SIZE] = "/proc/partitions";
const char *const PPROCBLK_PATH = PROCBLK_PATH;
const char MTAB_PATH[FNAME_SIZE] = "/etc/mtab";
const char *const PMTAB_PATH = MTAB_PATH;
const char MDSTAT_PATH[FNAME_SIZE] = "/proc/mdstat";
const char *const PMDSTAT_PATH = MDSTAT_PATH;
const char MDSPEED_MAX_PATH[FNAME_SIZE] = "/proc/sys/dev/raid/speed_limit_max";
const char *const PMDSPEED_MAX_PATH = MDSPEED_MAX_PATH;
const char MDSPEED_MIN_PATH[FNAME_SIZE] = "/proc/sys/dev/raid/speed_limit_min";
const char *const PMDSPEED_MIN_PATH = MDSPEED_MIN_PATH;

const int IDEDEV_MAJOR[IDEDEV_MAJORS] = {3, 22, 33, 34, 56, 57, 88, 89, 90, 91};
const int SCSIDEV_MAJOR[SCSIDEV_MAJORS] = {8, 65, 66, 67, 68, 69, 70, 71};

// The value of two hexadecimal digits, or -1.
static int hex_byte(const char *digits)
{
	const int high = hex_digit_value(digits[0]);
	const int low = hex_digit_value(digits[1]);
	return high < 0 || low < 0 ? -1 : high * 16 + low;
}

int maminame2mami(const char *name, unsigned int *mami)
{
	*mami = 0;
	const std::string_view base = split_devname(name).base;
	if (base.size() != 5 || base[2] != ':')
		return -1;
	const int major = hex_byte(&base[0]);
	const int minor = hex_byte(&base[3]);
	if (major < 0 || minor < 0)
		return -1;
	*mami = make_mami(static_cast<unsigned>(major), static_cast<unsigned>(minor));
	return 0;
}
