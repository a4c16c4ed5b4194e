#pragma once

#include "host/web/intrinsics/intrinsics.h"
#include "host/web/intrinsics/page_context.h"
#include "platform/interfaces/hosted.h"

namespace orvo::web {

inline constexpr std::int32_t longest_script = 3600;  // seconds
inline constexpr std::int32_t longest_random_text = 1000;

class ServerObject final : public Server {
public:
    explicit ServerObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

    std::int32_t ScriptTimeout() override;
    void put_ScriptTimeout(std::int32_t seconds) override;
    Object CreateObject(const Text& progid) override;
    Text HTMLEncode(const Variant& text) override;
    Text MapPath(const Text& path) override;
    Text URLEncode(const Variant& text) override;
    Text URLPathEncode(const Variant& text) override;
    void Execute(const Text& path) override;
    void Transfer(const Text& path) override;
    Object GetLastError() override { return asp_error(page_->last_failure); }
    Text LocalURL(const Variant& url, const Text& otherwise) override;
    Text RandomText(std::int32_t length) override;

private:
    PageControl& control();

    const std::shared_ptr<PageContext> page_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::ServerObject> = describe_class<web::Server>("Server");
}
