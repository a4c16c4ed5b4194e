#pragma once

// The addresses of a host, found within a limit. Not on Windows.

#include <netdb.h>

#include <memory>
#include <string>

#include "platform/network/deadline.h"

namespace orvo {

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

struct FoundAddresses {
    std::unique_ptr<addrinfo, FreeAddresses> list;
    // Of none: what getaddrinfo says, EAI_INPROGRESS where it took longer than the deadline.
    int error = 0;
};

// A numeric address never waits. Any thread.
FoundAddresses find_addresses(const std::string& host, int port, const Deadline& deadline,
                              const Resolver& resolver = system_resolver);

}  // namespace orvo
