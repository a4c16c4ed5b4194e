#pragma once

#include <string_view>

namespace orvo::web {

// "VBScript" or "PerlScript" where a line of a program that is no script of ours reads like one of
// theirs; empty where none does. A guess: for the message about a program that does not compile.
std::string_view other_language_of(std::string_view program);

}  // namespace orvo::web
