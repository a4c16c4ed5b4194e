#pragma once

#include "platform/interfaces/hosted.h"

namespace orvo {

// As a web host's Request answers.
class AddressedRequest {
public:
    explicit AddressedRequest(Text address = u"203.0.113.7") : address_(std::move(address)) {}

    Text ServerVariables(const Text& name) {
        if (name == u"REQUEST_ID") return u"yN1";
        return name == u"REMOTE_ADDR" ? address_ : Text();
    }

private:
    const Text address_;
};

template <>
inline constexpr auto table_of<AddressedRequest> =
    describe<AddressedRequest>("IAddressedRequest", "0f9a3b64-6df0-4c1a-8f0e-4f0a2c2f1b01",
                               get<&AddressedRequest::ServerVariables>("ServerVariables", "name"));
template <>
inline constexpr auto class_of<AddressedRequest> =
    describe_class<AddressedRequest>("Test.AddressedRequest");

}  // namespace orvo
