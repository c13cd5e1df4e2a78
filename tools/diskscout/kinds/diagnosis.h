// Why a query of the hardware RAID side failed. The plug-in tells no more than that it did.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_DIAGNOSIS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_DIAGNOSIS_H

#include "enquiry.h"

#include <string>

// A line for whoever has to find it out: what stands in the way, or where to look.
std::string diagnosis(enquiry_t &from);

#endif
