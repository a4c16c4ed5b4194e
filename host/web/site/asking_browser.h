#pragma once

#include "host/web/messages/http_message.h"
#include "platform/interfaces/hosted.h"
#include "platform/values/text.h"

namespace orvo::web {

// The Request of a thread's context while the guard is asked, before a page runs or in place of
// one: all that it tells is who asks, and for which request.
class AskingBrowser {
public:
    explicit AskingBrowser(const HttpRequest& request)
        : address_(from_utf8(request.remote_address)), id_(from_utf8(request.id)) {}

    // "REMOTE_ADDR" and "REQUEST_ID"; empty for any other name.
    Text ServerVariables(const Text& name) {
        if (equal_ignoring_case(name, u"REMOTE_ADDR")) return address_;
        return equal_ignoring_case(name, u"REQUEST_ID") ? id_ : Text();
    }

private:
    const Text address_;
    const Text id_;
};

}  // namespace orvo::web

namespace orvo {

template <>
inline constexpr auto table_of<web::AskingBrowser> = describe<web::AskingBrowser>(
    "IAskingBrowser", "5d6484d4-e801-49a0-904a-d385552ed9af",
    get<&web::AskingBrowser::ServerVariables>("ServerVariables", "name"));
template <>
inline constexpr auto class_of<web::AskingBrowser> =
    describe_class<web::AskingBrowser>("OrvoWeb.AskingBrowser");

}  // namespace orvo
