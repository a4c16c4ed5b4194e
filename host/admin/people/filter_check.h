#pragma once

// Apart from the other headers here, for sources that use the component's client.

#include <string>

namespace orvo::admin {

// Raises Misuse, with what is wrong and where, for a text that is no filter: "SpendLimit>=1000",
// "!(OrvoRole=*)" and the same in parentheses are.
void require_filter(const std::string& condition);

}  // namespace orvo::admin
