#pragma once

#include "host/web/intrinsics/intrinsics.h"
#include "host/web/intrinsics/page_context.h"
#include "platform/interfaces/hosted.h"

namespace orvo::web {

// What a page may set as its code page and locale, although nothing changes by it.
inline constexpr std::int32_t utf8_code_page = 65001;
inline constexpr std::int32_t usual_locale = 1033;    // English, United States
inline constexpr std::int32_t no_locale = 127;        // no country's
inline constexpr std::int32_t default_locale = 2048;  // the server's

// Raise 5 for any other one.
void require_utf8(std::int32_t code_page);
void require_usual_locale(std::int32_t locale);

class ResponseObject final : public Response {
public:
    explicit ResponseObject(std::shared_ptr<PageContext> page);

    bool Buffer() override { return page_->answer.is_buffered; }
    void put_Buffer(bool is_buffered) override;
    Text ContentType() override { return answer().content_type; }
    void put_ContentType(const Text& type) override;
    Variant Expires() override;
    void put_Expires(std::int32_t minutes) override { head().expires_minutes = minutes; }
    Variant ExpiresAbsolute() override;
    void put_ExpiresAbsolute(Date date) override { head().expires = date; }
    Object Cookies() override;
    Text Status() override;
    void put_Status(const Text& status) override;
    void AddHeader(const Text& name, const Text& value) override;
    void AppendToLog(const Text& text) override;
    void BinaryWrite(const Variant& bytes) override;
    void Clear() override { page_->clear(); }
    void End() override;
    void Flush() override { page_->flush(); }
    void Redirect(const Text& url) override;
    void Write(const Variant& value) override;
    bool IsClientConnected() override { return page_->is_browser_there(); }
    Text CharSet() override { return answer().charset; }
    void put_CharSet(const Text& charset) override;
    void Pics(const Text& label) override;
    Text CacheControl() override { return answer().cache_control; }
    void put_CacheControl(const Text& directives) override;
    std::int32_t CodePage() override { return utf8_code_page; }
    void put_CodePage(std::int32_t page) override;
    std::int32_t LCID() override { return usual_locale; }
    void put_LCID(std::int32_t locale) override;

private:
    PageAnswer& answer() { return page_->answer; }
    // For a change of what goes out in front of the body. Raises Failure once it has been sent.
    PageAnswer& head() {
        page_->require_head_not_sent();
        return page_->answer;
    }

    std::shared_ptr<PageContext> page_;
    Object cookies_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::ResponseObject> = describe_class<web::Response>("Response");
}
