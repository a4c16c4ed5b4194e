#include "suite/directory/ldap/pool/lease.h"

#include <algorithm>
#include <utility>

#include "suite/directory/ldap/memory/write_marks.h"
#include "suite/directory/ldap/pool/connection_pool.h"
#include "suite/directory/ldap/wire/failures.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory::ldap {

using std::chrono::steady_clock;

namespace {

constexpr const char* supported_controls = "supportedControl";

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
      connection_(std::exchange(other.connection_, {})),
      generation_(other.generation_),
      is_shared_(std::exchange(other.is_shared_, false)),
      policy_lasts_(other.policy_lasts_) {}

Lease& Lease::operator=(Lease&& other) noexcept {
    if (this == &other) return *this;
    end();
    pool_ = other.pool_;
    credentials_ = std::move(other.credentials_);
    limits_ = other.limits_;
    connection_ = std::exchange(other.connection_, {});
    generation_ = other.generation_;
    is_shared_ = std::exchange(other.is_shared_, false);
    policy_lasts_ = other.policy_lasts_;
    return *this;
}

Lease::~Lease() { end(); }

void Lease::end() noexcept {
    connection_.clear();
    if (std::exchange(is_shared_, false)) pool_->leave(*this);
}

// A connection that is not kept is not worth learning about.
BindResult Lease::check_password(const std::string& name, const Secret& password) {
    if (policy_lasts_.count() == 0 || !is_shared_)
        return session().bind(name, password, Policy::asked);
    Connection& connection = connection_.front().connection;
    const auto now = steady_clock::now();
    const bool is_known =
        connection.policy_learnt && now - *connection.policy_learnt < policy_lasts_;
    BindResult bind = session().bind(name, password, is_known ? connection.policy : Policy::asked);
    if (is_known || !bind.ok()) return bind;
    if (const std::optional<Policy> learnt = learnt_from(bind, now)) {
        connection.policy = *learnt;
        connection.policy_learnt = now;
    } else {
        connection_.clear();
    }
    return bind;
}

// Nothing: the connection is of no use any more.
std::optional<Policy> Lease::learnt_from(const BindResult& accepted,
                                         steady_clock::time_point begin) {
    Identity& identity = *credentials_.identity;
    if (identity.is_silent() ||
        std::ranges::count(accepted.controls, policy_control, &Control::oid) != 0)
        return Policy::asked;
    Limits rest = limits_;
    rest.answer -= std::chrono::floor<std::chrono::milliseconds>(steady_clock::now() - begin);
    rest.answer = std::max(rest.answer, std::chrono::milliseconds(1));
    session().set_limits(rest);
    const ReadResult root = session().read("", {supported_controls});
    if (root.connection_failed()) {
        // It may only have been slow before that.
        const bool had_time = rest.answer >= limits_.answer / 2;
        if (root.code != result_code::server_down && had_time) identity.note_silence();
        return std::nullopt;
    }
    session().set_limits(limits_);
    // A server that shows nobody what it knows may know this one.
    const auto shown = std::ranges::find_if(root.entry.attributes, [](const Attribute& attribute) {
        return ascii::equal_ignoring_case(attribute.name, supported_controls);
    });
    const bool is_shown =
        root.ok() && shown != root.entry.attributes.end() && !shown->values.empty();
    return is_shown && std::ranges::count(shown->values, policy_control) == 0 ? Policy::not_asked
                                                                              : Policy::asked;
}

void Lease::give_back() && {
    if (connection_.empty()) {
        end();
    } else {
        pool_->take_back(*this);
    }
}

void Lease::reopen() {
    connection_.clear();
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
    connection_.clear();
    connection_.push_back({nullptr, {Session::connect(identity.server(), limits_), now}});
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
        connection_.clear();
        if (!bind.connection_failed() && !says_nothing(bind)) pool_->was_refused(*this, digest);
    }
    return bind;
}

}  // namespace orvo::directory::ldap
