#pragma once

// Where directories, or the providers in front of them, have to differ. What is not listed here is
// equal, and tested literally for all of them.

namespace orvo {

struct Difference {
    const char* slapd;     // OrvoDirectory.Ldap in front of the sample server
    const char* embedded;  // OrvoDirectory.Embedded with the same entries
    const char* reason;
};

namespace differences {

inline constexpr Difference source{"OrvoDirectory.Ldap", "OrvoDirectory.Embedded",
                                   "A failure names its provider."};

inline constexpr Difference stored_password{
    "{SSHA}", "{CRYPT}$y$",
    "slapd hashes passwords as it is configured to, the embedded directory with yescrypt."};

inline constexpr Difference longest_password{
    "65536", "511", "The system's yescrypt takes no longer ones; slapd's digests take any."};

}  // namespace differences
}  // namespace orvo
