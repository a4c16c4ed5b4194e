#pragma once

// Cookies: those of a request, and those that an answer sets.

#include <optional>
#include <string>

#include "host/web/messages/http_message.h"
#include "host/web/messages/request_fields.h"
#include "platform/values/date.h"

namespace orvo::web {

// The cookies of a request; of a name that comes twice the first one counts, as browsers send the
// most specific one first. Raises Refusal.
RequestFields cookies_of(const HttpRequest& request);

// The keys of the cookie of that name ("a=1&b=2"), each decoded by itself; none of one that is a
// plain text. Raises Refusal.
RequestFields cookie_keys_of(const HttpRequest& request, TextView name);

// The value of the cookie of exactly this name, both as they came: no other spelling of the name
// passes for it. Where it comes twice the first one counts.
std::optional<std::string_view> try_exact_cookie(const HttpRequest& request, std::string_view name);

// The name of the session's cookie. Under TLS browsers take one of this name from this very host
// only.
std::string_view session_cookie_name(bool is_secure);
// What the session's cookie says, as it came; empty where there is none.
std::string session_id_of(const HttpRequest& request);

// A cookie that an answer sets. Unless a page says otherwise it lasts as long as the browser runs,
// no script in the browser can read it, other sites' forms do not send it, and it never travels
// without TLS once it came with TLS.
struct OutgoingCookie {
    Text name;
    Text value = {};
    std::vector<std::pair<Text, Text>> keys = {};  // in place of a value: "a=1&b=2"
    Text path = u"/";
    Text domain = {};
    std::optional<Date> expires = {};  // in Greenwich
    bool is_secure = false;
    bool is_http_only = true;
    Text same_site = u"Lax";  // "Lax", "Strict" or "None"
};

// The value of the header Set-Cookie. Name, value and keys are encoded as in a form. Raises Failure
// as cookie_attribute.
std::string header_text(const OutgoingCookie& cookie);

// The value of a cookie's Path or Domain as it is sent. Raises Failure (5) where it has something
// in it that would begin another attribute or another line, or that is not ASCII.
std::string cookie_attribute(TextView name, const Text& value);

// "Sat, 21 Nov 2026 02:32:11 GMT"
std::string http_date(Date date);
// Now, in Greenwich.
Date current_date();
// A date of the local time, as scripts and components have them, in Greenwich. Where that would be
// beyond the calendar's first or last day it stays as it is.
Date in_greenwich(Date local);

}  // namespace orvo::web
