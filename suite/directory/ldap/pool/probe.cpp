#include "suite/directory/ldap/pool/probe.h"

#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {

std::optional<std::string> probe(const ServerHost& host, const Limits& limits) {
    Result result;
    if (auto session = Session::try_connect(host, limits, result)) {
        result = session->read("", {"1.1"});
        if (!result.connection_failed() && !result.is_unavailable()) return std::nullopt;
    }
    return to_utf8(directory_failure(result.code, {}, result.message).description);
}

}  // namespace orvo::directory::ldap
