#include "suite/directory/ldap/server_login.h"

#include "suite/directory/ldap/failures.h"

namespace orvo::directory::ldap {
namespace {

// Whoever cannot be bound has the wrong credentials, whatever a server calls it.
void check_bind(const Result& bind) {
    switch (bind.code) {
        case result_code::no_such_object:
        case result_code::invalid_name:
        case result_code::inappropriate_authentication: {
            Failure failure = directory_failure(bind.code, provider_name, bind.message);
            failure.number = number_of_code(result_code::invalid_credentials);
            throw failure;
        }
        default:
            check(bind);
    }
}

}  // namespace

ServerLogin::ServerLogin(TextView server, TextView user, TextView password, const Limits& limits)
    : server_(ServerAddress::parse(server)),
      server_key_(server_.key()),
      user_(to_utf8(user)),
      password_(password),
      limits_(limits) {
    if (password_.empty() && !user_.empty())
        raise_code(result_code::invalid_credentials, "A password is required.");
}

Session ServerLogin::connect() const {
    Session session = Session::connect(server_, limits_);
    // Nobody needs no bind: a new connection is nobody's.
    if (!user_.empty() || !password_.empty()) check_bind(session.bind(user_, password_));
    return session;
}

}  // namespace orvo::directory::ldap
