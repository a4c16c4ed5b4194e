#pragma once

#include "platform/interfaces/hosted.h"
#include "platform/values/text.h"

namespace orvo::web {

// The Request of a thread's context while the guard is asked, before a page runs or in place of
// one: all that it tells is who asks.
class AskingBrowser {
public:
    explicit AskingBrowser(std::string_view address) : address_(from_utf8(address)) {}

    // "REMOTE_ADDR"; empty for any other name.
    Text ServerVariables(const Text& name) {
        return equal_ignoring_case(name, u"REMOTE_ADDR") ? address_ : Text();
    }

private:
    const Text address_;
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
