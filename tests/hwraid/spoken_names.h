// SPDX-License-Identifier: Apache-2.0
// Names that a test can foretell for the files of a run.
#ifndef DISKSCOUT_TESTS_HWRAID_SPOKEN_NAMES_H
#define DISKSCOUT_TESTS_HWRAID_SPOKEN_NAMES_H

enum class names_t {
	FRESH,  // as outside of tests
	SPOKEN, // of each run: script1, raw1, filtered1, then script2 …
	EMPTY,
};

// From here on, counted from the first one.
void use_names(names_t names);

#endif
