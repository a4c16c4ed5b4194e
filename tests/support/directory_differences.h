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

// How many of the sample shop's users and their container a filter finds.
inline constexpr Difference superior_attribute{
    "1", "0", "(name=jsmith) finds cn, sn and the like with slapd, here what is called name."};
inline constexpr Difference computed_attribute{
    "1", "0", "hasSubordinates and entryDN are in no entry, so nothing is found by them."};
inline constexpr Difference leading_zeros{
    "0", "156", "slapd takes 01 for no number; here, as in the provider, it is 1."};
inline constexpr Difference replication{
    "201", "0", "slapd notes entryCSN for other servers, of which a file has none."};

// Empty: it is created.
inline constexpr Difference long_name{
    "(80) The server met an error of another kind. The name may be too long for it.", "",
    "slapd's database has keys of 511 bytes, and says no more about it; a file has no such limit."};

inline constexpr Difference longest_password{
    "65536", "511", "The system's yescrypt takes no longer ones; slapd's digests take any."};

}  // namespace differences
}  // namespace orvo
