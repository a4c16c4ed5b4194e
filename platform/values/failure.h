#pragma once

// The one C++ exception of the house: an Automation error. A failure is a value that owns its
// texts. The functions below keep no state: any thread may call them.

#include <cstdint>
#include <exception>

#include "platform/values/text.h"

namespace orvo {

// Number, source, description, help file and help context, as Automation's error object has them.
//
// Numbers: run-time failures carry their small Automation numbers (91, 13, …) and cross a binary
// border as 0x800A0000 + number; every other number is a result code and crosses as it is. A source
// left empty is filled in with the component's name where the failure is handled or crosses; one
// that an error object left empty stays so.
struct Failure : std::exception {
    Failure(std::int32_t number, Text source, Text description, Text help_file = {},
            std::int32_t help_context = 0);

    std::int32_t number;
    Text source;
    // An empty source is what an error object said, and is not filled in.
    bool keeps_empty_source = false;
    Text description;
    Text help_file;
    std::int32_t help_context;

    // Number and description in UTF-8, for test output and crash logs.
    const char* what() const noexcept override { return what_.c_str(); }

private:
    std::string what_;
};

// A number of the form 0x8004xxxx, written as it is read.
constexpr std::int32_t error_number(std::uint32_t code) { return static_cast<std::int32_t>(code); }

// With what an object answers a thread that it does not serve; the call has not arrived.
inline constexpr std::int32_t wrong_thread = error_number(0x8001010E);

// Run-time error numbers of Automation's scripting languages.
namespace runtime_error {
inline constexpr std::int32_t invalid_call = 5;
inline constexpr std::int32_t overflow = 6;
inline constexpr std::int32_t out_of_memory = 7;
inline constexpr std::int32_t subscript_out_of_range = 9;
inline constexpr std::int32_t type_mismatch = 13;
inline constexpr std::int32_t bad_file_name = 52;
inline constexpr std::int32_t file_not_found = 53;
inline constexpr std::int32_t bad_file_mode = 54;
inline constexpr std::int32_t device_error = 57;
inline constexpr std::int32_t file_already_exists = 58;
inline constexpr std::int32_t disk_full = 61;
inline constexpr std::int32_t input_past_end = 62;
inline constexpr std::int32_t too_many_files = 67;
inline constexpr std::int32_t device_unavailable = 68;
inline constexpr std::int32_t permission_denied = 70;
inline constexpr std::int32_t path_not_found = 76;
inline constexpr std::int32_t object_not_set = 91;
inline constexpr std::int32_t invalid_use_of_null = 94;
inline constexpr std::int32_t object_required = 424;
inline constexpr std::int32_t cannot_create_object = 429;
inline constexpr std::int32_t member_not_found = 438;
inline constexpr std::int32_t argument_not_optional = 449;
inline constexpr std::int32_t duplicate_key = 457;
inline constexpr std::int32_t no_current_record = 3021;
}  // namespace runtime_error

// The standard text of a run-time error number; empty for a number that has none.
TextView runtime_error_text(std::int32_t number);

// Raises a run-time error with its standard text.
[[noreturn]] void raise_runtime_error(std::int32_t number);

// The number that a result code arrives as when no error object came with it: DISP_E_TYPEMISMATCH
// is 13, E_INVALIDARG 5, 0x800A0000 + n is n; a code without a number of its own stays itself.
std::int32_t number_of_result(std::int32_t result);
// The other way: the result code that carries an error number over a binary border. Always a
// failing one: 0 and numbers above 0xFFFF, which no error has, become E_FAIL.
std::int32_t result_of_number(std::int32_t number);

}  // namespace orvo
