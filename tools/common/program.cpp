// SPDX-License-Identifier: Apache-2.0
// What all our programs are to their callers.
#include "program.h"

#include "output.h"
#include "usage_error.h"

#include <exception>

int run_program(int (*run)(int argc, char **argv), int argc, char **argv)
{
	occupy_standard_descriptors();
	try {
		return run(argc, argv);
	} catch (const usage_error_t &error) {
		complain(error.what());
		return STATUS_USAGE;
	} catch (const std::exception &error) {
		complain(error.what());
		return STATUS_FAILED;
	}
}
