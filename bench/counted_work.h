#pragma once

// What a job costs, counted in ways that a busy machine disturbs less than the time it takes.

#include <sys/resource.h>

#include <string>

#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo {

// The seconds of processor time that this process has used.
inline double processor_time() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// The operations that a server completes: since the construction, or since asked before.
class ServerOperations {
public:
    explicit ServerOperations(const PrivateSlapd& server)
        : probe_(server.url(), server.root_dn(), server.root_password()), before_(completed()) {}

    long since() {
        const long now = completed();
        // The question before was completed after its answer.
        const long done = now - before_ - 1;
        before_ = now;
        return done;
    }

private:
    long completed() {
        return std::stol(probe_.values("cn=Operations,cn=Monitor", "monitorOpCompleted").front());
    }

    LdapProbe probe_;
    long before_;
};

}  // namespace orvo
