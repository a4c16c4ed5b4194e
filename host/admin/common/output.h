#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "host/admin/common/options.h"

namespace orvo::admin {

// Raises std::runtime_error where the stream takes no more, as when its reader has gone away.
void put(std::ostream& out, std::string_view text);

// What was written to standard output is out then; raises like put().
void flush_output();

// What was done to a user or profile, to standard output: "jsmith: removed." Nothing with --quiet.
void say(const CommonOptions& options, const std::string& name, const std::string& what);

}  // namespace orvo::admin
