#pragma once

#include "host/web/intrinsics/intrinsics.h"
#include "host/web/intrinsics/page_context.h"
#include "platform/interfaces/hosted.h"

namespace orvo::web {

class RequestObject final : public Request {
public:
    explicit RequestObject(std::shared_ptr<PageContext> page);

    Variant Item(const Text& name) override;
    Object QueryString() override;
    Object Form() override;
    Object ServerVariables() override;
    Object Cookies() override;
    std::int32_t TotalBytes() override;
    Variant BinaryRead(Variant& count) override;
    Object Files() override;

private:
    std::shared_ptr<PageContext> page_;
    Object query_, form_, files_, variables_, cookies_;  // made when they are asked for
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::RequestObject> = describe_class<web::Request>("Request");
}
