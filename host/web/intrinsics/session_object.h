#pragma once

#include "host/web/intrinsics/intrinsics.h"
#include "host/web/intrinsics/page_context.h"
#include "host/web/intrinsics/response_object.h"
#include "platform/interfaces/hosted.h"

namespace orvo::web {

// Reading makes no session; putting a value or Timeout, and asking for SessionID or FormToken,
// makes one where the browser has none.
class SessionObject final : public Session {
public:
    explicit SessionObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

    Text SessionID() override { return data().public_id; }
    Variant Value(const Text& name) override;
    void put_Value(const Text& name, const Variant& value) override;
    void set_Value(const Text& name, const Variant& value) override;
    std::int32_t Timeout() override;
    void put_Timeout(std::int32_t minutes) override;
    void Abandon() override;
    std::int32_t CodePage() override { return utf8_code_page; }
    void put_CodePage(std::int32_t page) override { require_utf8(page); }
    std::int32_t LCID() override { return usual_locale; }
    void put_LCID(std::int32_t locale) override { require_usual_locale(locale); }
    Object StaticObjects() override;
    Object Contents() override;
    Text FormToken() override { return from_utf8(data().form_token); }
    bool IsFormToken(const Text& token) override;

private:
    SessionData& data();

    const std::shared_ptr<PageContext> page_;
};

class ApplicationObject final : public Application {
public:
    explicit ApplicationObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

    Variant Value(const Text& name) override;
    void put_Value(const Text& name, const Variant& value) override;
    void set_Value(const Text& name, const Variant& value) override;
    void Lock() override;
    void UnLock() override { page_->application.unlock(); }
    Object StaticObjects() override;
    Object Contents() override;

private:
    const std::shared_ptr<PageContext> page_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::SessionObject> = describe_class<web::Session>("Session");
template <>
inline constexpr auto class_of<web::ApplicationObject> =
    describe_class<web::Application>("Application");
}  // namespace orvo
