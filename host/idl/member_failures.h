#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace orvo {

// A failure that a member tells its callers, for the pages of the reference. What the directory
// provider raises is not repeated at every member that reaches the directory.
struct MemberFailure {
    const char* interface_name;
    const char* member;
    std::int32_t number;
    const char* when;  // how a sentence ends that begins with the number's own text
};

// In the order of the classes. Every row names a member that there is: the compiler looks it up.
std::span<const MemberFailure> member_failures();

// As people write a number: "91" for a run-time error, "0x80040320" for any other.
std::string shown_number(std::int32_t number);

// What a number says, a sentence: that of OrvoMemErrors, of a run-time error, of a directory's
// failure or of the configuration's. Empty for any other.
std::string number_text(std::int32_t number);

}  // namespace orvo
