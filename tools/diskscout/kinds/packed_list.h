// SPDX-License-Identifier: Apache-2.0
// The answer to a query as bytes, which one process hands to another: the records with all that they point
// to, in one piece, in which pointers are distances from its beginning.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PACKED_LIST_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PACKED_LIST_H

#include "diskscout.h"

#include <cstddef>
#include <vector>

// What is known of a query beside its code.
struct record_layout_t;
struct query_t {
	UINT code;
	const char *stage; // where the work is while it is asked: "disk list"
	const record_layout_t *layout;
	bool runs_tool; // it runs the controller tool
};

// A code that no row is for is told as a query of records that hold nothing: no kind asks it.
const query_t &query_of(UINT code);

struct list_head_t {
	const void *first;
	int length; // of the list, both it and the links end it
	int error;  // errno of a failed query; 0: it left none
	bool has_failed;
};

std::vector<char> pack(const query_t &query, const list_head_t &list);

// The list in these bytes, which hold its records from now on; they must be aligned as any record is.
list_head_t unpack(const query_t &query, char *bytes);

#endif
