#pragma once

#include "platform/abi/hosted.h"
#include "platform/automation/variant.h"

namespace orvo {

// Checks a user's password against the directory.
class Validator {
public:
    // The provider's own answer for the user's full path and the password, as a 32-bit integer:
    // negative for a failed check, which is no failure of this operation.
    Variant ValidatePassword(Variant& iUserId, Variant& iPassword);
    // Loads a site configuration file into the thread's shared settings.
    void setServerInfo(const Text& i_sConfigurationPath);

private:
    std::int32_t CheckUserPassword(Text sUserId, Text sPassword);
};

// clang-format off
template <>
inline constexpr auto table_of<Validator> = describe<Validator>(
    "IValidator", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e715",
    reserved(1),
    method<&Validator::ValidatePassword>("ValidatePassword", "iUserId", "iPassword"),
    method<&Validator::setServerInfo>("setServerInfo", "i_sConfigurationPath"),
    reserved(4));
// clang-format on

template <>
inline constexpr auto class_of<Validator> =
    describe_class<Validator>("OrvoMembership.Validator", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e705");

}  // namespace orvo
