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
    //   Server      "ldap://dir01:389", "ldap://dir01:389/?starttls"
    //   State       "up", "suspected" (an operation failed, a probe is to decide) or "down"
    //   Reason      why it is not up; empty while it is
    //   Since       since when it is in this state, a date in UTC
    //   NextProbe   when it is probed next, a date in UTC; Empty where it is not going to be
    //   Operations  how many were answered, as a double
    //   Failures    how many were not, or with "busy" or "unavailable"
    //   Latency     the mean of the latest answers, in milliseconds
    virtual Object States() = 0;
    // A record set with a row for the connections of each user, and one for those of the password
    // checks below each container, ordered by "User". The columns:
    //   User     a distinguished name; empty for nobody's, and for password checks
    //   Use      "user" or "checks"
    //   Servers  the servers that they lead to, in order of preference
    //   InUse    how many are in use
    //   Idle     how many are idle
    //   Waiting  how many operations wait for one
    virtual Object Connections() = 0;
    // Forgets what this process keeps of entries; how many those were.
    virtual std::int32_t ClearCache() = 0;
    // A record set with a row for each server and kind of operation that was asked of it, ordered
    // by "Server". The columns:
    //   Server     as above; empty: whichever it was
    //   Operation  "connect", "bind", "read" (of one entry), "search", "modify", "add", "delete",
    //              "password modify", "extended"; or "wait", for a connection that others had
    //   Count      how many, as a double
    //   Failures   of these without an answer, or with "busy" or "unavailable", as a double
    //   Seconds    what all of them took, as a double
    //   0.0005 ... a column for each bound, in seconds: how many took no longer than that, as a
    //              double
    virtual Object Operations() = 0;
    // A record set of counts since the process began, each with a name, what it is of, and a
    // double:
    //   retries, failovers          by server: operations tried again after it had failed them, and
    //                               those that went on to another one
    //   in use, idle, waiting       by "user" or "checks": connections now, and who waits for one
    //   cache hits, cache misses    entries that were looked for and found, or not
    //   cache entries               that are kept now
    virtual Object Counts() = 0;

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
        "(milliseconds)."),
    method<&directory::DirectoryServers::Connections>("Connections")
        .help("A row for the connections of each user, and for those of password checks. Columns: "
              "User, Use (user or checks), Servers, InUse, Idle and Waiting."),
    method<&directory::DirectoryServers::ClearCache>("ClearCache")
        .help("Forgets what this process keeps of entries; how many those were."),
    method<&directory::DirectoryServers::Operations>("Operations")
        .help("A row for each server and kind of operation that was asked of it. Columns: Server, "
              "Operation, Count, Failures and Seconds, and one for each bound in seconds, with how "
              "many took no longer."),
    method<&directory::DirectoryServers::Counts>("Counts").help(
        "What was counted since the process began: retries and failovers of each server, "
        "connections, and what was found in the cache. Columns: Name, Of and Value."));

namespace directory::ldap {

// The servers of the LDAP provider, created by its ProgID "OrvoDirectory.LdapServers".
class LdapServers final : public DirectoryServers {
public:
    explicit LdapServers(Client& client = Client::of_process()) : client_(client) {}

    Object States() override;
    Object Connections() override;
    std::int32_t ClearCache() override;
    Object Operations() override;
    Object Counts() override;

private:
    Client& client_;
};

}  // namespace directory::ldap

template <>
inline constexpr auto class_of<directory::ldap::LdapServers> =
    describe_class<directory::DirectoryServers>("OrvoDirectory.LdapServers",
                                                "636fbd8b-485b-4fb5-8e93-820968735425");

}  // namespace orvo
