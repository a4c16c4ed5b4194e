#include "host/web/site/guard.h"

#include "component/auth/filter_contract.h"
#include "host/web/messages/encoding.h"
#include "host/web/messages/random_token.h"
#include "platform/interfaces/call.h"

namespace orvo::web {
namespace {

// What a server takes that is careful, with room for the rest of the request line.
constexpr std::size_t longest_address = 7000;

}  // namespace

bool is_allowed(const SessionLogin& login, const Text& cookie, const Variant& connector,
                std::int32_t application) {
    if (login.guid.empty() || !equal_secretly(to_utf8(cookie), to_utf8(login.guid))) return false;
    if (!connector.is_object()) return false;
    const auto filter = Ref<FilterConnector>::from(connector.to<Object>());
    if (!call<&FilterConnector::IsLoggedIn>(filter, login.guid, application)) return false;
    const auto user = call<&FilterConnector::FindUserByGUID>(filter, login.guid);
    return user && equal_ignoring_case(call<&FilterUser::AccountPath>(user), login.account);
}

std::string login_address(const Site& site, std::string_view target) {
    const std::string address = site.login_page + "?url=" + to_utf8(url_encode(from_utf8(target)));
    return address.size() > longest_address ? site.login_page : address;
}

}  // namespace orvo::web
