#include "suite/directory/ldap/lease.h"

#include <utility>

#include "suite/directory/ldap/connection_pool.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/write_marks.h"

namespace orvo::directory::ldap {

using std::chrono::steady_clock;

namespace {

// A server that cannot say now whether the credentials are right.
bool says_nothing(const Result& bind) {
    return bind.code == result_code::busy || bind.code == result_code::unavailable ||
           bind.code == result_code::other;
}

}  // namespace

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

Lease::Lease(ConnectionPool& pool, const Credentials& credentials, const Limits& limits)
    : pool_(&pool), credentials_(credentials), limits_(limits) {}

Lease::Lease(Lease&& other) noexcept
    : pool_(other.pool_),
      credentials_(std::move(other.credentials_)),
      limits_(other.limits_),
      connection_(std::exchange(other.connection_, std::nullopt)),
      generation_(other.generation_),
      is_shared_(std::exchange(other.is_shared_, false)) {}

Lease& Lease::operator=(Lease&& other) noexcept {
    if (this == &other) return *this;
    end();
    pool_ = other.pool_;
    credentials_ = std::move(other.credentials_);
    limits_ = other.limits_;
    connection_ = std::exchange(other.connection_, std::nullopt);
    generation_ = other.generation_;
    is_shared_ = std::exchange(other.is_shared_, false);
    return *this;
}

Lease::~Lease() { end(); }

void Lease::end() noexcept {
    connection_.reset();
    if (std::exchange(is_shared_, false)) pool_->leave(*this);
}

void Lease::give_back() && { pool_->take_back(*this); }

void Lease::reopen() {
    connection_.reset();
    open();
    PasswordDigest digest;
    const Secret password = pool_->password_of(credentials_, digest);
    Result bind = authenticate(password, digest);
    if (bind.code == result_code::invalid_credentials) {
        // The user may be changing it at this moment.
        const std::lock_guard turn(credentials_.identity->password_turn());
        PasswordDigest digest_now;
        const Secret now = pool_->password_of(credentials_, digest_now);
        if (!(digest_now == digest)) {
            open();
            bind = authenticate(now, digest_now);
        }
    }
    check_bind(bind);
}

void Lease::open() {
    const auto now = steady_clock::now();
    const Identity& identity = *credentials_.identity;
    connection_.emplace(Session::connect(identity.server(), limits_), now);
}

Result Lease::authenticate(const Secret& password, const PasswordDigest& digest) {
    const Identity& identity = *credentials_.identity;
    if (identity.kind() == Identity::Kind::password_checks) return {};
    // Nobody needs no bind: a new connection is nobody's.
    if (identity.user().empty() && password.empty()) return {};
    const Acceptance asked{steady_clock::now(), write_mark(identity.user_key())};
    const Result bind = session().bind(identity.user(), password);
    if (bind.ok()) {
        pool_->was_accepted(*this, digest, asked);
    } else {
        // Its user is nobody now, or not known.
        connection_.reset();
        if (!bind.connection_failed() && !says_nothing(bind)) pool_->was_refused(*this, digest);
    }
    return bind;
}

}  // namespace orvo::directory::ldap
