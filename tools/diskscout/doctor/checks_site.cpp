// The controller tool's configuration.
#include "check.h"

const checks_t SITE_CHECKS = {nullptr, 0};
