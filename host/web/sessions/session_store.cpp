#include "host/web/sessions/session_store.h"

#include <algorithm>

namespace orvo::web {

SessionLogin login_in(const NamedValues& values) {
    const auto text = [&](TextView name) {
        const Variant value = values.get(name);
        return value.is_text() ? Text(value.text_view()) : Text();
    };
    return {text(u"QUENDRAID"), text(u"REMOTE_ACCOUNT")};
}

std::size_t rank_of(const SessionData& session) {
    if (session.values.count() == 0) return 0;
    return login_in(session.values).guid.empty() ? 1 : 2;
}

int usual_requests_of_one_session(int directory_workers) {
    constexpr int of_a_browser = 6, left_to_others = 2, least = 2;
    return std::max(
        {least, directory_workers / 2, std::min(of_a_browser, directory_workers - left_to_others)});
}

}  // namespace orvo::web
