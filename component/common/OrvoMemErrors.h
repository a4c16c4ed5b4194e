#pragma once

#include <cstdint>
#include <span>

namespace orvo {

// The component's public error numbers, each once: name and offset from the base of object errors.
// clang-format off
#define ORVO_MEM_ERRORS(row)              \
    row(emErrNotBoundToUser, 0x320)       \
    row(emErrServerInfoNotCreated, 0x321) \
    row(emErrUserAlreadyExists, 0x322)    \
    row(emErrNotBoundToMembers, 0x323)    \
    row(emErrUserDoesNotExist, 0x324)     \
    row(emErrPwdNotCorrect, 0x325)        \
    row(emErrNotBoundToProfile, 0x326)    \
    row(emErrNotBoundToProfiles, 0x327)   \
    row(emErrProfileNotSet, 0x328)        \
    row(emErrAppNoAccess, 0x32B)
// clang-format on

enum OrvoMemErrors : std::int32_t {
#define ORVO_ROW(name, offset) name = static_cast<std::int32_t>(0x80040000u + (offset)),
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
};

inline constexpr MemError mem_errors[] = {
#define ORVO_ROW(name, offset) {#name, name},
    ORVO_MEM_ERRORS(ORVO_ROW)
#undef ORVO_ROW
};

#undef ORVO_MEM_ERRORS

}  // namespace orvo
