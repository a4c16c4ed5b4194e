#pragma once

// What LDAP result codes are called, and with which error numbers they reach the component. One
// table; every provider's failures are made from it.

#include <cstdint>
#include <string_view>

#include "platform/values/failure.h"

namespace orvo::directory {

// Result codes of the protocol (RFC 4511), and those of a client (RFC 1823's numbers, from 81).
namespace result_code {
inline constexpr int success = 0;
inline constexpr int protocol_error = 2;
inline constexpr int referral = 10;
inline constexpr int admin_limit_exceeded = 11;
inline constexpr int confidentiality_required = 13;
inline constexpr int no_such_attribute = 16;
inline constexpr int undefined_attribute_type = 17;
inline constexpr int inappropriate_matching = 18;
inline constexpr int constraint_violation = 19;
inline constexpr int value_exists = 20;
inline constexpr int invalid_syntax = 21;
inline constexpr int no_such_object = 32;
inline constexpr int invalid_name = 34;
inline constexpr int inappropriate_authentication = 48;
inline constexpr int invalid_credentials = 49;
inline constexpr int insufficient_access = 50;
inline constexpr int busy = 51;
inline constexpr int unavailable = 52;
inline constexpr int unwilling_to_perform = 53;
inline constexpr int naming_violation = 64;
inline constexpr int object_class_violation = 65;
inline constexpr int not_allowed_on_non_leaf = 66;
inline constexpr int entry_already_exists = 68;
inline constexpr int class_change_prohibited = 69;
inline constexpr int other = 80;
inline constexpr int server_down = 81;
inline constexpr int local_error = 82;
inline constexpr int decoding_error = 84;
inline constexpr int timeout = 85;
inline constexpr int parameter_error = 89;
inline constexpr int connect_error = 91;
inline constexpr int not_supported = 92;
}  // namespace result_code

// The error number of a result code: that of the table's row, 0x80072095 for a code without one.
std::int32_t number_of_code(int code);

// The failure for a result code. Description: "(68) The specified entry already exists.", then,
// each after a blank and only where not empty, the server's message as it came and the nearest
// entry that it found (both UTF-8).
Failure directory_failure(int code, TextView source, std::string_view message = {},
                          std::string_view nearest_entry = {});

}  // namespace orvo::directory
