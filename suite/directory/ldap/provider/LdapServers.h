#pragma once

#include "platform/interfaces/hosted.h"
#include "platform/interfaces/interface.h"
#include "suite/directory/ldap/provider/client.h"

namespace orvo {
namespace directory {

// How a provider's servers are doing.
class DirectoryServers {
public:
    // A record set with a row for each server that this process has worked with, ordered by
    // "Server". The columns:
    //   Server      "ldap://dir01:389"
    //   State       "up", "suspected" (an operation failed, a probe is to decide) or "down"
    //   Reason      why it is not up; empty while it is
    //   Since       since when it is in this state, a date in UTC
    //   NextProbe   when it is probed next, a date in UTC; Empty where it is not going to be
    //   Operations  how many were answered, as a double
    //   Failures    how many were not, or with "busy" or "unavailable"
    //   Latency     the mean of the latest answers, in milliseconds
    virtual Object States() = 0;

protected:
    ~DirectoryServers() = default;
};

}  // namespace directory

template <>
inline constexpr auto table_of<directory::DirectoryServers> = describe<directory::DirectoryServers>(
    "IDirectoryServers", "ad6637a5-d0e6-4742-8f27-7de2af8f7796",
    about("How the servers of the LDAP provider are doing."),
    method<&directory::DirectoryServers::States>("States").help(
        "A row for each server that this process has worked with. Columns: Server, State "
        "(up, suspected or down), Reason, Since, NextProbe, Operations, Failures and Latency "
        "(milliseconds)."));

namespace directory::ldap {

// The servers of the LDAP provider, created by its ProgID "OrvoDirectory.LdapServers".
class LdapServers final : public DirectoryServers {
public:
    explicit LdapServers(Client& client = Client::of_process()) : client_(client) {}

    Object States() override;

private:
    Client& client_;
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapServers> =
    describe_class<directory::DirectoryServers>("OrvoDirectory.LdapServers",
                                                "636fbd8b-485b-4fb5-8e93-820968735425");

}  // namespace orvo
