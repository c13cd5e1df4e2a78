// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/linux/mdspeed.h"

#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/str.h"

static int read_limit(const char *path, size32_t *limit)
{
	line_t line;
	if (fsread_line_by_path(path, line) != 0)
		return -1;
	std::string_view text = line;
	int64_t number;
	if (!str_next_int(&text, &number))
		return -1;
	*limit = static_cast<size32_t>(number);
	return 0;
}

int get_mdspeed(mdspeed_t *speed)
{
	mdspeed_t limits = {};
	*speed = {};
	if (read_limit(PMDSPEED_MIN_PATH, &limits.min) != 0 ||
	    read_limit(PMDSPEED_MAX_PATH, &limits.max) != 0)
		return -1;
	*speed = limits;
	return 0;
}

static int write_limit(const char *path, size32_t limit)
{
	char digits[12];
	snprintf(digits, sizeof digits, "%d", low_32(limit));
	return limit == 0 ? 0 : fswrite_text_by_path(path, digits);
}

int set_mdspeed(const mdspeed_t *speed)
{
	if (speed->max != 0 && speed->min > speed->max)
		return -1;
	const int min_result = write_limit(PMDSPEED_MIN_PATH, speed->min);
	const int max_result = write_limit(PMDSPEED_MAX_PATH, speed->max);
	return min_result == 0 && max_result == 0 ? 0 : -1;
}

int set_mdspeed_default()
{
	const mdspeed_t speed = {10000, 100};
	return set_mdspeed(&speed);
}
