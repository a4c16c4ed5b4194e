#pragma once

// What the classes take from the web page that makes them: its object context's items, and what a
// login left in the session.

#include "platform/values/object.h"
#include "platform/values/secret.h"
#include "platform/values/text.h"

namespace orvo {

// Session variables of a login.
inline constexpr const char16_t* session_guid = u"QUENDRAID";
inline constexpr const char16_t* session_user = u"REMOTE_USER";        // as it was typed in
inline constexpr const char16_t* session_account = u"REMOTE_ACCOUNT";  // the user's full name
inline constexpr const char16_t* session_password = u"REMOTE_PASSWORD";

// What an activation notes in the log where there is no page: `method` in whose name, and the two
// texts; without a text nothing is noted.
struct ActivationNotes {
    const char16_t* method;
    const char16_t* no_context;  // the thread runs in no object context
    const char16_t* no_item;     // the context lacks the item
};

// Whether the thread's object context has this item ("Session"). Where it has not, that is noted.
bool runs_in_page(const Text& item, const ActivationNotes& notes);

// A session variable as text, empty where it was not set. Raises what the session raises, and 13
// for a value that is no text and does not become one.
Text session_text(const Object& session, const char16_t* name);
// The password of the login, read in the same way.
Secret session_secret(const Object& session);

}  // namespace orvo
