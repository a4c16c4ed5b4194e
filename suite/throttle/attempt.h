#pragma once

// Whose password is tried from where, in the form in which attempts are counted.

#include <string>

#include "platform/values/text.h"

namespace orvo::throttle {

struct Attempt {
    std::string user;              // user_key
    std::string address;           // address_key; empty: a program's, no browser's
    bool is_of_user_only = false;  // it is counted for the address under another name of the user

    bool operator==(const Attempt&) const = default;
};

// One key for all spellings that a directory might take for one name (EntryKey::loose): letters and
// digits, whatever their case, blanks, escapes and types. Names of which that cannot be told share
// one key. At most 256 octets.
std::string user_key(TextView distinguished_name);

// Of an IPv4 address itself, also where it is written as an IPv6 one; of any other IPv6 address the
// network /64 ("2001:db8:0:1::/64"): that is what one customer has. Anything else is its own key.
// At most 64 octets.
std::string address_key(TextView address);

}  // namespace orvo::throttle
