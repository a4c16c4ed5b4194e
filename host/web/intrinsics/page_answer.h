#pragma once

#include <memory>
#include <optional>

#include "host/web/messages/cookies.h"
#include "host/web/messages/http_message.h"
#include "platform/values/date.h"

namespace orvo::web {

// The answer that a page builds.
struct PageAnswer {
    int status = 200;
    Text status_text = {};  // of a status that has no usual one
    Text content_type = u"text/html";
    Text charset = u"utf-8";
    Text cache_control = u"no-store";
    std::optional<std::int32_t> expires_minutes = {};
    std::optional<Date> expires = {};  // local
    Headers headers = {};
    std::vector<std::shared_ptr<OutgoingCookie>> cookies = {};
    // What was written and has not been sent; where there is no way to send a piece of an answer,
    // what counts as sent stands in front of it.
    std::string body = {};
    std::size_t sent_in_body = 0;
    std::uint64_t sent_before = 0;
    bool is_buffered = true;
    // Everything but the body is settled: it has been sent.
    bool has_begun = false;
    std::string log_note = {};
};

inline constexpr std::size_t largest_answer = 64 * 1024 * 1024;

// The answer of a page as it goes out.
HttpResponse response_of(PageAnswer answer);

}  // namespace orvo::web
