// SPDX-License-Identifier: Apache-2.0
// Which fields of a kind are columns.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_COLUMNS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_COLUMNS_H

#include "kinds.h"

#include <string>
#include <vector>

using columns_t = std::vector<const field_t *>;

// Those of the tables of format 1.
columns_t old_columns_of(const kind_t &kind);

// Those that are named, with commas between them, in any case; "+" before them: those that are shown unasked,
// and these behind them; empty: those that are shown unasked. Throws usage_error for one that there is not,
// or that is there twice. As before: what is shown unasked is what format 1 shows.
columns_t columns_of(const kind_t &kind, const std::string &named, bool as_before = false);

// All that can be named.
columns_t known_columns_of(const kind_t &kind);

// The spare ones of the kind.
columns_t spare_columns_of(const kind_t &kind);

// Whether columns that are named so have the one of this name.
bool has_column(const kind_t &kind, const std::string &named, std::string_view name);

// The column of this name. Throws usage_error when there is none.
const field_t &column_of(const kind_t &kind, std::string_view name);

#endif
