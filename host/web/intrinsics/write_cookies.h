#pragma once

#include "host/web/intrinsics/intrinsics.h"
#include "host/web/intrinsics/page_context.h"
#include "platform/interfaces/hosted.h"

namespace orvo::web {

class WriteCookieObject final : public WriteCookie {
public:
    WriteCookieObject(std::shared_ptr<PageContext> page, std::shared_ptr<OutgoingCookie> cookie)
        : page_(std::move(page)), cookie_(std::move(cookie)) {}

    void put_Item(const Variant& key, const Text& value) override;
    void put_Expires(Date date) override { cookie().expires = in_greenwich(date); }
    void put_Domain(const Text& domain) override;
    void put_Path(const Text& path) override;
    void put_Secure(bool is_secure) override { cookie().is_secure = is_secure; }
    bool HasKeys() override { return !cookie_->keys.empty(); }
    Object NewEnum() override;
    void put_HttpOnly(bool is_http_only) override { cookie().is_http_only = is_http_only; }
    void put_SameSite(const Text& same_site) override;
    void put_Value(const Text& value) override { put_Item(Variant::missing(), value); }

private:
    // For a change. Raises Failure once the cookie has been sent.
    OutgoingCookie& cookie() {
        page_->require_head_not_sent();
        return *cookie_;
    }

    const std::shared_ptr<PageContext> page_;
    const std::shared_ptr<OutgoingCookie> cookie_;
};

class WriteCookiesObject final : public WriteCookies {
public:
    explicit WriteCookiesObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

    Variant Item(const Variant& name) override;
    void put_Item(const Text& name, const Text& value) override;
    Object NewEnum() override;
    std::int32_t Count() override;

private:
    std::shared_ptr<OutgoingCookie> cookie(const Text& name);

    const std::shared_ptr<PageContext> page_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::WriteCookieObject> =
    describe_class<web::WriteCookie>("Response.Cookie");
template <>
inline constexpr auto class_of<web::WriteCookiesObject> =
    describe_class<web::WriteCookies>("Response.Cookies");
}  // namespace orvo
