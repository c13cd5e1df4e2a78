// SPDX-License-Identifier: Apache-2.0
// The queries behind the boundary: each builds its whole list, hands it out and forgets everything else.
// 0; or -1 with errno set, and nothing handed out.
#ifndef DISKSCOUT_BLOCK_QUERIES_H
#define DISKSCOUT_BLOCK_QUERIES_H

int list_devices(void **result, int *length);
int list_links(void **result, int *length);
int list_contents(void **result, int *length);
int list_mounts(void **result, int *length);
int list_arrays(void **result, int *length);

#endif
