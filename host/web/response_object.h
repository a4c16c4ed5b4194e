#pragma once

#include "host/web/intrinsics.h"
#include "host/web/page_context.h"
#include "platform/interfaces/hosted.h"

namespace orvo::web {

class ResponseObject final : public Response {
public:
    explicit ResponseObject(std::shared_ptr<PageContext> page);

    bool Buffer() override { return true; }
    void put_Buffer(bool) override {}
    Text ContentType() override { return answer().content_type; }
    void put_ContentType(const Text& type) override;
    Variant Expires() override;
    void put_Expires(std::int32_t minutes) override { answer().expires_minutes = minutes; }
    Variant ExpiresAbsolute() override;
    void put_ExpiresAbsolute(Date date) override { answer().expires = date; }
    Object Cookies() override;
    Text Status() override;
    void put_Status(const Text& status) override;
    void AddHeader(const Text& name, const Text& value) override;
    void AppendToLog(const Text& text) override;
    void BinaryWrite(const Variant& bytes) override;
    void Clear() override { answer().body.clear(); }
    void End() override;
    void Flush() override {}
    void Redirect(const Text& url) override;
    void Write(const Variant& value) override;
    bool IsClientConnected() override { return true; }
    Text CharSet() override { return answer().charset; }
    void put_CharSet(const Text& charset) override;
    Text CacheControl() override { return answer().cache_control; }
    void put_CacheControl(const Text& directives) override;

private:
    PageAnswer& answer() { return page_->answer; }

    std::shared_ptr<PageContext> page_;
    Object cookies_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::ResponseObject> = describe_class<web::Response>("Response");
}
