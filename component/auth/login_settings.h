#pragma once

#include <cstdint>

namespace orvo {

// A number of section "GLOBAL" of the site's configuration, which a login's registration reads.
template <class T>
struct LoginSetting {
    const char16_t* key;
    T otherwise;         // where the configuration does not say
    const char* values;  // what it may be
    const char* about;
};

inline constexpr LoginSetting<std::int16_t> multi_login{
    u"MultiLogin", 1, "0 or 1",
    "1: a user may be logged in more than once at a time; 0: a new login ends the former."};
inline constexpr LoginSetting<std::int32_t> multi_login_timeout{
    u"MultiLoginTimeout", 10, "minutes, 1 to 525600",
    "How long after its last request a login ends. Less than 1 is 10, more than a year is a year."};

}  // namespace orvo
