// SPDX-License-Identifier: Apache-2.0
// The words of a host table line; see words.h.
#include "replay/words.h"

#include <errno.h>
#include <string.h>

namespace replay
{

static bool is_blank(char c)
{
	return c == ' ' || c == '\t';
}

static int digit_value(char c)
{
	if (c >= '0' && c <= '9')
		return c - '0';
	if (c >= 'a' && c <= 'f')
		return c - 'a' + 10;
	if (c >= 'A' && c <= 'F')
		return c - 'A' + 10;
	return 16;
}

void cut_comment(char *line)
{
	for (char *at = line; *at != '\0'; ++at) {
		if (*at == '#' && (at == line || is_blank(at[-1]))) {
			*at = '\0';
			return;
		}
	}
}

char *next_word(char **cursor)
{
	char *at = *cursor;
	while (is_blank(*at))
		++at;
	if (*at == '\0')
		return nullptr;
	char *word = at;
	while (*at != '\0' && !is_blank(*at))
		++at;
	if (*at != '\0')
		*at++ = '\0';
	*cursor = at;
	return word;
}

bool read_number(const char *word, uint64_t max, uint64_t *value)
{
	const bool hex = word[0] == '0' && word[1] == 'x';
	const unsigned base = hex ? 16 : 10;
	const char *at = hex ? word + 2 : word;
	uint64_t sum = 0;

	if (*at == '\0')
		return false;
	for (; *at != '\0'; ++at) {
		const unsigned digit = static_cast<unsigned>(digit_value(*at));
		if (digit >= base || sum > (UINT64_MAX - digit) / base)
			return false;
		sum = sum * base + digit;
	}
	if (sum > max)
		return false;
	*value = sum;
	return true;
}

bool read_hex_byte(const char *word, unsigned char *value)
{
	const size_t length = strlen(word);
	unsigned sum = 0;

	if (length < 1 || length > 2)
		return false;
	for (; *word != '\0'; ++word) {
		const int digit = digit_value(*word);
		if (digit > 15)
			return false;
		sum = sum * 16 + static_cast<unsigned>(digit);
	}
	*value = static_cast<unsigned char>(sum);
	return true;
}

bool read_hex(char *cursor, unsigned char *bytes, size_t room, unsigned *used)
{
	for (char *word = next_word(&cursor); word; word = next_word(&cursor)) {
		for (; *word != '\0'; word += 2) {
			const int high = digit_value(word[0]);
			const int low = word[1] == '\0' ? 16 : digit_value(word[1]);
			if (high > 15 || low > 15 || *used >= room)
				return false;
			bytes[(*used)++] = static_cast<unsigned char>(high * 16 + low);
		}
	}
	return true;
}

int errno_by_name(const char *name)
{
	static const struct {
		const char *name;
		int number;
	} ERRORS[] = {
		{"EPERM", EPERM},         {"ENOENT", ENOENT},
		{"EINTR", EINTR},         {"EIO", EIO},
		{"ENXIO", ENXIO},         {"EBADF", EBADF},
		{"EAGAIN", EAGAIN},       {"ENOMEM", ENOMEM},
		{"EACCES", EACCES},       {"EFAULT", EFAULT},
		{"ENOTBLK", ENOTBLK},     {"EBUSY", EBUSY},
		{"ENODEV", ENODEV},       {"ENOTDIR", ENOTDIR},
		{"EISDIR", EISDIR},       {"EINVAL", EINVAL},
		{"ENFILE", ENFILE},       {"EMFILE", EMFILE},
		{"ENOTTY", ENOTTY},       {"EFBIG", EFBIG},
		{"ENOSPC", ENOSPC},       {"EROFS", EROFS},
		{"ERANGE", ERANGE},       {"ENOSYS", ENOSYS},
		{"ELOOP", ELOOP},         {"ENODATA", ENODATA},
		{"ETIME", ETIME},         {"EPROTO", EPROTO},
		{"EOVERFLOW", EOVERFLOW}, {"EOPNOTSUPP", EOPNOTSUPP},
		{"ETIMEDOUT", ETIMEDOUT}, {"EHOSTDOWN", EHOSTDOWN},
		{"ESTALE", ESTALE},       {"EREMOTEIO", EREMOTEIO},
		{"ENOMEDIUM", ENOMEDIUM}, {"EMEDIUMTYPE", EMEDIUMTYPE},
		{"ENOLINK", ENOLINK},
	};

	for (const auto &row : ERRORS) {
		if (strcmp(row.name, name) == 0)
			return row.number;
	}
	return 0;
}

static bool is_octal(char c)
{
	return c >= '0' && c <= '7';
}

bool unescape(char *text)
{
	char *out = text;
	for (const char *at = text; *at != '\0'; ++out) {
		if (*at != '\\') {
			*out = *at++;
			continue;
		}
		if (!is_octal(at[1]) || at[1] > '3' || !is_octal(at[2]) || !is_octal(at[3]))
			return false;
		const int value = (at[1] - '0') * 64 + (at[2] - '0') * 8 + (at[3] - '0');
		if (value == 0)
			return false;
		*out = static_cast<char>(value);
		at += 4;
	}
	*out = '\0';
	return true;
}

} // namespace replay
