#pragma once

// What the provider tells the suite's log of its failures.

#include <string_view>

#include "platform/values/failure.h"

namespace orvo::directory {

// Writes a note under the failure's source, while the failure is on its way to the caller, who may
// tell it in other words:
//
//     note OrvoDirectory.Ldap: Bind of 'cn=jsmith,ou=Users,o=Shop' failed, 0x8007052E: (49) …
//
// Where a page of a web host does it, the request has a name there: "failed (request yN1…), 0x…".
// `operation`: the interface's name for it. `entry`: what the object works on, of a long name the
// beginning; empty: nothing yet. Nothing is written, nor put together, where the suite's log is
// told to leave notes out; nor for a failure that writing such a note causes itself. A log that is
// missing or fails changes nothing. Any thread.
void note_failure(const char* operation, std::string_view entry, const Failure& failure) noexcept;

}  // namespace orvo::directory
