#pragma once

// Passwords as a directory keeps them (RFC 2307, RFC 3112 and what OpenLDAP has beside): a scheme
// in braces, in any case, and what it makes of the password.
//
//     {CRYPT}            any method that the system's crypt knows, also those that look at the
//                        first 8 or 72 bytes only
//     {SSHA}, {SSHA256}, {SSHA384}, {SSHA512}, {SMD5}      salted digest, base64
//     {SHA}, {SHA256}, {SHA384}, {SHA512}, {MD5}           digest without salt
//     {PBKDF2}, {PBKDF2-SHA1}, {PBKDF2-SHA256}, {PBKDF2-SHA512}   "rounds$salt$key"

#include <string_view>

#include "platform/values/secret.h"

namespace orvo::directory {

// Whether a stored value is the hash of this password. Takes as much processor time as the hash
// costs, so never call it inside a lock; which byte differs does not show in it. A value of another
// scheme, without one, or that cannot be read, is nobody's.
bool is_hash_of(std::string_view stored, const Secret& password);

// Whether a stored value has one of the schemes above, so that is_hash_of can be true of it.
bool is_known_hash(std::string_view stored);

// Whether a stored value is to be replaced by a new hash as soon as the password is known: it is
// anything but a yescrypt hash of at least this cost (password_hash.h).
bool should_be_renewed(std::string_view stored, int cost);

// Takes the time that is_hash_of takes for a hash of this cost, so that nobody can tell from the
// time whether a name that was tried is a user's.
void imitate_check(const Secret& password, int cost);

}  // namespace orvo::directory
