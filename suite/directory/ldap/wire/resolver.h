#pragma once

// The addresses of a host, found within a limit. Private to the sources of this folder; not on
// Windows, where the client library finds them itself.

#include <netdb.h>

#include <memory>

#include "suite/directory/ldap/wire/deadline.h"
#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap::detail {

// The C library's asynchronous look-up: it starts one, and tells how it stands, EAI_INPROGRESS
// while it runs. What it is still busy with after a deadline goes on in the C library's own
// threads, which need nothing of this module.
struct Resolver {
    int (*start)(gaicb* lookup);
    int (*state)(gaicb* lookup);
};
extern const Resolver system_resolver;

struct FreeAddresses {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

// A numeric address never waits. Empty: `why` tells. Any thread.
Addresses find_addresses(const ServerHost& host, const Deadline& deadline, Result& why,
                         const Resolver& resolver = system_resolver);

}  // namespace orvo::directory::ldap::detail
