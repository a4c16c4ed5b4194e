#include "host/web/intrinsics/write_cookies.h"

#include <algorithm>

#include "platform/interfaces/enumerator.h"
#include "platform/values/failure.h"

namespace orvo::web {

void WriteCookieObject::put_Item(const Variant& key, const Text& value) {
    OutgoingCookie& changed = cookie();
    if (key.is_missing()) {
        changed.value = value;
        changed.keys.clear();
        return;
    }
    const Text name = key.to<Text>();
    const auto found = std::ranges::find_if(
        changed.keys, [&](const auto& known) { return equal_ignoring_case(known.first, name); });
    if (found != changed.keys.end())
        found->second = value;
    else
        changed.keys.emplace_back(name, value);
}

Object WriteCookieObject::NewEnum() {
    std::vector<Variant> names;
    for (const auto& [name, value] : cookie_->keys) names.emplace_back(name);
    return make_enumerator(std::move(names));
}

void WriteCookieObject::put_Domain(const Text& domain) {
    cookie_attribute(u"Domain", domain);
    cookie().domain = domain;
}

void WriteCookieObject::put_Path(const Text& path) {
    cookie_attribute(u"Path", path);
    cookie().path = path;
}

void WriteCookieObject::put_SameSite(const Text& same_site) {
    for (const TextView known : {u"Lax", u"Strict", u"None"})
        if (equal_ignoring_case(same_site, known)) {
            cookie().same_site = known;
            return;
        }
    throw Failure(runtime_error::invalid_call, {},
                  u"SameSite is \"Lax\", \"Strict\" or \"None\", not \"" + same_site + u"\"");
}

Variant WriteCookiesObject::Item(const Variant& name) {
    return make<WriteCookieObject>(page_, cookie(name.to<Text>())).object();
}

void WriteCookiesObject::put_Item(const Text& name, const Text& value) {
    WriteCookieObject(page_, cookie(name)).put_Value(value);
}

Object WriteCookiesObject::NewEnum() {
    std::vector<Variant> names;
    for (const auto& cookie : page_->answer.cookies) names.emplace_back(cookie->name);
    return make_enumerator(std::move(names));
}

std::int32_t WriteCookiesObject::Count() {
    return static_cast<std::int32_t>(page_->answer.cookies.size());
}

std::shared_ptr<OutgoingCookie> WriteCookiesObject::cookie(const Text& name) {
    auto& cookies = page_->answer.cookies;
    const auto found = std::ranges::find_if(
        cookies, [&](const auto& cookie) { return equal_ignoring_case(cookie->name, name); });
    if (found != cookies.end()) return *found;
    page_->require_head_not_sent();
    if (name.empty()) throw Failure(runtime_error::invalid_call, {}, u"A cookie needs a name");
    const bool is_secure = page_->request.is_secure;
    if (equal_ignoring_case(name, from_utf8(session_cookie_name(is_secure))))
        throw Failure(runtime_error::invalid_call, {},
                      u"The session's cookie is the server's own business");
    auto made = std::make_shared<OutgoingCookie>(OutgoingCookie{.name = name});
    made->is_secure = is_secure;
    cookies.push_back(made);
    return made;
}

}  // namespace orvo::web
