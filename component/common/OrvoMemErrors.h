#pragma once

#include <cstdint>
#include <span>

namespace orvo {

// The component's public error numbers, each once: name, offset from the base of object errors, and
// what it says. Four of them are raised by no member any more: an object that is not bound raises
// 91 (object not set), a name that is taken entry_already_exists.
// clang-format off
#define ORVO_MEM_ERRORS(row)                                                           \
    row(emErrNotBoundToUser, 0x320, "A user object is bound to no user.")              \
    row(emErrServerInfoNotCreated, 0x321, "No site configuration has been loaded.")    \
    row(emErrUserAlreadyExists, 0x322, "A user of this name exists already.")          \
    row(emErrNotBoundToMembers, 0x323, "The users' container is not bound.")           \
    row(emErrUserDoesNotExist, 0x324, "A user is asked for without a name.")           \
    row(emErrPwdNotCorrect, 0x325, "The current password is not correct.")             \
    row(emErrNotBoundToProfile, 0x326, "A profile object is bound to no profile.")     \
    row(emErrNotBoundToProfiles, 0x327, "The profiles' container is not bound.")       \
    row(emErrProfileNotSet, 0x328, "A user has no profile.")                           \
    row(emErrAppNoAccess, 0x32B, "The user has not the application that is asked for.")
// clang-format on

enum OrvoMemErrors : std::int32_t {
#define ORVO_ROW(name, offset, text) name = static_cast<std::int32_t>(0x80040000u + (offset)),
    ORVO_MEM_ERRORS(ORVO_ROW)
#undef ORVO_ROW
};

// Numbers outside the enumeration: what a login or a creation could not do, and the two failures of
// a directory provider that the containers tell apart.
inline constexpr auto membership_failed = static_cast<std::int32_t>(0x8004044Cu);
inline constexpr auto entry_already_exists = static_cast<std::int32_t>(0x8004044Fu);
inline constexpr auto no_such_entry = static_cast<std::int32_t>(0x80072030u);

struct MemError {
    const char* name;
    OrvoMemErrors value;
    const char* text;  // a sentence
};

inline constexpr MemError mem_errors[] = {
#define ORVO_ROW(name, offset, text) {#name, name, text},
    ORVO_MEM_ERRORS(ORVO_ROW)
#undef ORVO_ROW
};

#undef ORVO_MEM_ERRORS

}  // namespace orvo
