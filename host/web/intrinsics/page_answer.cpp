#include "host/web/intrinsics/page_answer.h"

#include "host/web/messages/cookies.h"

namespace orvo::web {

HttpResponse response_of(PageAnswer answer) {
    HttpResponse response;
    response.status = answer.status;
    response.content_type = to_utf8(answer.content_type);
    const bool is_text = response.content_type.starts_with("text/") ||
                         response.content_type.ends_with("json") ||
                         response.content_type.ends_with("xml");
    if (is_text && response.content_type.find("charset") == std::string::npos)
        response.content_type += "; charset=" + to_utf8(answer.charset);
    response.headers = std::move(answer.headers);
    std::string cache_control = to_utf8(answer.cache_control);
    if (answer.expires_minutes && *answer.expires_minutes > 0) {
        if (cache_control == "no-store")
            cache_control = "private, max-age=" + std::to_string(*answer.expires_minutes * 60LL);
        response.headers.emplace_back(
            "Expires", http_date(Date{current_date().days + *answer.expires_minutes / 1440.0}));
    } else if (answer.expires) {
        if (cache_control == "no-store") cache_control = "private";
        response.headers.emplace_back("Expires", http_date(in_greenwich(*answer.expires)));
    }
    response.headers.emplace_back("Cache-Control", cache_control);
    for (const auto& cookie : answer.cookies)
        response.headers.emplace_back("Set-Cookie", header_text(*cookie));
    response.body = std::move(answer.body);
    return response;
}

}  // namespace orvo::web
