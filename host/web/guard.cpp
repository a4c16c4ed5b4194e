#include "host/web/guard.h"

#include "component/auth/filter_contract.h"
#include "host/web/encoding.h"
#include "host/web/random_token.h"
#include "platform/interfaces/call.h"

namespace orvo::web {
namespace {

Text session_text(const PageContext& page, TextView name) {
    if (!page.session()) return {};
    const Variant value = page.session()->data().values.get(name);
    return value.is_text() ? Text(value.text_view()) : Text();
}

}  // namespace

bool is_allowed(const PageContext& page, TextView login_cookie, std::int32_t application) {
    const auto* cookie = page.cookies.find(login_cookie);
    const Text guid = session_text(page, u"QUENDRAID");
    if (!cookie || guid.empty() || !equal_secretly(to_utf8(cookie->values.front()), to_utf8(guid)))
        return false;
    const Variant held = page.application.get(filter_connector_progid);
    if (!held.is_object()) return false;
    const auto connector = Ref<FilterConnector>::from(held.to<Object>());
    if (!call<&FilterConnector::IsLoggedIn>(connector, guid, application)) return false;
    const auto user = call<&FilterConnector::FindUserByGUID>(connector, guid);
    return user && equal_ignoring_case(call<&FilterUser::AccountPath>(user),
                                       session_text(page, u"REMOTE_ACCOUNT"));
}

std::string login_address(const Site& site, std::string_view target) {
    return site.login_page + "?url=" + to_utf8(url_encode(from_utf8(target)));
}

}  // namespace orvo::web
