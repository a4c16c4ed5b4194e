#pragma once

#include <string>

#include "platform/values/secret.h"

namespace orvo::directory {

// The name of a user who logs in with this password, in full, as a directory is given it; empty for
// nobody, who has neither. Raises 0x8007052E for what no directory is asked about: a name with an
// empty password (a server would take that for nobody and report success), with a NUL, or with one
// that is nobody's (`unusable`), and half of a surrogate pair in either.
std::string login_name(TextView user, const Secret& password);

}  // namespace orvo::directory
