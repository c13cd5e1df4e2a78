// This machine.
#include "check.h"

const checks_t MACHINE_CHECKS = {nullptr, 0};
