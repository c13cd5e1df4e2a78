#include "mountinfo.h"
