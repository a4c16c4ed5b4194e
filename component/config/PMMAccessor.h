#pragma once

#include <optional>

#include "component/config/DirectoryAccount.h"

namespace orvo {

// The membership layer for callers outside a web page: loads a named site configuration file and
// lists the users of one application. Keeps the service account as it was at the last
// InitConfigFile. Used by the thread that made it.
class PMMAccessor {
public:
    // Loads the file into the thread's shared settings and takes the service account from them.
    void InitConfigFile(const Text& sSiteConfigFileName);
    // Users with this application, at most 1000, as a record set with the column "CN". Application
    // 10 is the administrators', who are found by their type. Raises 91 before InitConfigFile.
    Object GetLDAPUsers(std::int32_t productID);

private:
    std::optional<PMMCreator> factory_;
    DirectoryAccount account_;
};

// clang-format off
template <>
inline constexpr auto table_of<PMMAccessor> = describe<PMMAccessor>(
    "IPMMAccessor", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e71b",
    about("The users of an application, for callers outside web pages."),
    method<&PMMAccessor::InitConfigFile>("InitConfigFile", "sSiteConfigFileName")
        .help("Loads a site configuration file; comes first."),
    method<&PMMAccessor::GetLDAPUsers>("GetLDAPUsers", "productID")
        .help("The users of an application, at most 1000, as a record set with the column CN. "
              "Application 10 is the administrators'."));
// clang-format on

extern template struct detail::callee<PMMAccessor>;

template <>
inline constexpr auto class_of<PMMAccessor> = describe_class<PMMAccessor>(
    "OrvoMembership.PMMAccessor", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e70b");

}  // namespace orvo
