// SPDX-License-Identifier: Apache-2.0
// The JSON Schema of the document of format 2.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SCHEMA_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SCHEMA_H

#include <string>

// Draft 2020-12, made from the field tables that the document is written from. It allows nothing that they do
// not name.
std::string document_schema();

#endif
