#pragma once

#include <string>

#include "host/admin/common/options.h"

namespace orvo::admin {

struct CompletionRequest {
    CommonOptions common;
    std::string kind;   // "USER", "ROLE" or "PROFILE"
    std::string begin;  // what was typed of the name
};
// Prints names that begin so, whatever their case, one in a line; of users the first hundred.
int print_names(const CompletionRequest& request);

}  // namespace orvo::admin
