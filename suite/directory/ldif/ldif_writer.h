#pragma once

// Writes entries as LDIF (RFC 2849), for LdifReader and for the programs of directory servers.

#include <string>

#include "suite/directory/entries/entry_data.h"

namespace orvo::directory {

// Appends the entry and an empty line. Lines are folded at 76 characters; what is more than
// printable ASCII, or would be read as something else, is base64.
void append_ldif(std::string& text, const EntryData& entry);

}  // namespace orvo::directory
