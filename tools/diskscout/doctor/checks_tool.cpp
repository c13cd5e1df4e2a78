// What the controller tool and the filter script do.
#include "check.h"

const checks_t TOOL_CHECKS = {nullptr, 0};
