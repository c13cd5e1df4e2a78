// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/fn.h"

#include "base/text.h"
#include "hdd/sal/src/0/str.h"

#include <string.h>

devname_t split_devname(std::string_view path)
{
	devname_t name;
	const size_t separator = path.rfind(*PDCHAR);
	name.base = path;
	if (separator != std::string_view::npos)
		name.base.remove_prefix(separator + 1);

	name.stem = name.base;
	while (!name.stem.empty() && is_digit(name.stem.back()))
		name.stem.remove_suffix(1);

	std::string_view digits = name.base;
	digits.remove_prefix(name.stem.size());
	name.number = str_digits(digits);
	return name;
}

bool is_ide_stem(std::string_view stem)
{
	return stem.size() == 3 && stem >= "hda" && stem <= "hdt";
}

bool is_scsi_stem(std::string_view stem)
{
	if (stem.size() == 3)
		return stem >= "sda" && stem <= "sdz";
	// compat: the first two of four letters are not compared with "sd": hdaa and xxaz pass for disks too.
	// The 128 disks that have a number end with "dx".
	return stem.size() == 4 && stem[2] >= 'a' && stem[2] <= 'd' && stem[3] >= 'a' &&
	       stem[3] <= (stem[2] == 'd' ? 'x' : 'z');
}

static bool is_partition_number(int number, int last)
{
	return number == -1 || (number >= 1 && number <= last);
}

bool is_ide_name(const devname_t &name)
{
	return is_ide_stem(name.stem) && is_partition_number(name.number, 16);
}

bool is_scsi_name(const devname_t &name)
{
	return is_scsi_stem(name.stem) && is_partition_number(name.number, 15);
}

int fn_join(fname_t out, const char *dir, const char *name)
{
	out[0] = '\0';
	str_append(out, FNAME_SIZE, dir);
	str_append(out, FNAME_SIZE, PDCHAR);
	str_append(out, FNAME_SIZE, name);
	if (strlen(dir) + strlen(PDCHAR) + strlen(name) < FNAME_SIZE)
		return 0;
	b0_fname(out);
	return -1;
}
