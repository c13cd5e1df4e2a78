// SPDX-License-Identifier: Apache-2.0
// Sixteen-byte identities in their text form.
#ifndef DISKSCOUT_HDD_SAL_LINUX_XXID_H
#define DISKSCOUT_HDD_SAL_LINUX_XXID_H

// A new random identity, 16 bytes.
void xxid_generate(unsigned char *id);
// Writes id (16 bytes) as a lower-case UUID of 36 characters into text (a str_t, cleared first). Returns 0.
int xxid_unparse(const unsigned char *id, char *text);

#endif
