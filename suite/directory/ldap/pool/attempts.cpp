#include "suite/directory/ldap/pool/attempts.h"

#include <algorithm>
#include <utility>

#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;

bool was_lost(const Result& result) { return result.code == result_code::server_down; }

std::string reason_of(const Result& result) {
    return to_utf8(directory_failure(result.code, {}, result.message).description);
}

Failure bind_failure(const Result& bind) {
    Failure failure = directory_failure(bind.code, {}, bind.message, bind.nearest_entry);
    switch (bind.code) {
        case result_code::no_such_object:
        case result_code::invalid_name:
        case result_code::inappropriate_authentication:
            failure.number = number_of_code(result_code::invalid_credentials);
            break;
        default:
            break;
    }
    return failure;
}

// That the credentials are no good, rather than that the server is not.
bool says_wrong(const Result& bind) {
    switch (bind.code) {
        case result_code::invalid_credentials:
        case result_code::no_such_object:
        case result_code::invalid_name:
        case result_code::inappropriate_authentication:
            return true;
        default:
            return false;
    }
}

}  // namespace

void check_bind(const Result& bind) {
    if (!bind.ok()) throw bind_failure(bind);
}

Attempts::Attempts(ConnectionPool& pool, ConnectionSetRef set, const Operation& operation)
    : pool_(pool),
      set_(std::move(set)),
      operation_(operation),
      entry_(operation.entry.empty() ? std::nullopt
                                     : std::make_optional<EntryKey>(operation.entry)),
      lease_(pool, set_),
      limits_(operation.limits.value_or(lease_.settings().limits)) {}

Session& Attempts::session() {
    if (!server_) choose_server();
    if (!lease_.has_connection()) {
        take_connection();
        authenticate();
    }
    lease_.connection().checked.reset();
    asked_at_ = pool_.clock().now();
    if (operation_.effect == Effect::bind) mark_ = pool_.writes().mark(*entry_);
    return lease_.connection().session;
}

void Attempts::take_connection() {
    const PoolSettings& settings = lease_.settings();
    const auto now = pool_.clock().now();
    const bool is_user = set_->use() == ConnectionSet::Use::as_user && !set_->user().empty();
    // One that was checked is the answer to what would be asked.
    const bool is_asked = is_user && is_presented_ && !set_->is_accepted(settings, now);
    const bool is_checked = is_asked && lease_.take_checked(server_);
    if (!is_checked)
        if (const auto refusal = set_->refusal(settings, now)) throw *refusal;
    // What is sent once is not sent into a connection that is closed.
    const bool is_sent_once = operation_.effect != Effect::none || is_presented_;
    const auto care = is_sent_once ? Lease::Care::sure : Lease::Care::usual;
    is_new_ = !is_checked && !lease_.take_idle(server_, care) &&
              !(is_user && lease_.take_checked(server_));
    const bool is_nobody = set_->use() == ConnectionSet::Use::as_user && !is_user;
    if (is_new_ && (is_nobody || !lease_.take_from_others(server_)))
        connect();
    else
        lease_.connection().session.set_limits(limits_);
}

void Attempts::note_right(const Secret& password) {
    if (lease_.settings().recheck.count() == 0) return;
    lease_.connection().checked =
        CheckedLogin{std::string(operation_.entry), password.clone(), asked_at_, mark_};
}

void Attempts::choose_server() {
    const ServerGroup& group = set_->group();
    if (tried_.empty()) {
        // Where the user's own password has been changed, too: other servers may not know it yet.
        if (entry_) server_ = group.last_written_on(*entry_);
        if (!server_ && !set_->user().empty()) server_ = group.last_written_on(set_->user_key());
    }
    if (!server_) server_ = group.choose(lease_.settings().failback_after, tried_);
}

// To the server that was chosen or, where it cannot be reached, to the next one.
void Attempts::connect() {
    for (;;) {
        const std::uint64_t generation = server_->generation();
        Result why;
        const auto begin = std::chrono::steady_clock::now();
        auto session = Session::try_connect(server_->host(), limits_, why);
        server_->figures()->note(OperationKind::connect, std::chrono::steady_clock::now() - begin,
                                 !session);
        if (session) {
            session->count_in(server_->figures());
            const auto now = pool_.clock().now();
            lease_.put({std::move(*session), server_, generation, now, now});
            return;
        }
        note_failure(server_, why);
        if (!reasons_.empty()) reasons_ += ' ';
        reasons_ += "'" + server_->url() + "'";
        if (!why.message.empty()) reasons_ += ": " + why.message;
        tried_.push_back(server_);
        server_ = set_->group().choose(lease_.settings().failback_after, tried_);
        if (!server_) raise_code(why.code, reasons_);
        tried_.back()->figures()->failovers.add();
    }
}

void Attempts::authenticate() {
    if (set_->use() == ConnectionSet::Use::password_checks) return;
    const PoolSettings& settings = lease_.settings();
    const bool is_known =
        !is_new_ && (!is_presented_ || set_->is_accepted(settings, pool_.clock().now()));
    // Nobody needs no bind: a new connection is nobody's.
    if (is_known || (set_->user().empty() && set_->password().empty())) return;
    question_.emplace(*set_, settings, pool_.clock(), 2 * limits_.answer);
    if (const auto refusal = set_->refusal(settings, pool_.clock().now())) throw *refusal;
    if (!is_new_ && set_->is_accepted(settings, pool_.clock().now())) {
        question_.reset();
        return;
    }
    Result result = bind();
    while (result.connection_failed() && !result.sent) {
        tried_.push_back(server_);
        server_ = set_->group().choose(settings.failback_after, tried_);
        if (!server_) break;
        tried_.back()->figures()->failovers.add();
        is_new_ = true;
        connect();
        result = bind();
    }
    question_.reset();
    check_bind(result);
}

// As the set's user.
Result Attempts::bind() {
    const Secret password = set_->password();
    Result result = bind_once(password);
    if (!says_wrong(result)) return result;
    // The user may be changing it at this moment, and need a place for it, or an answer.
    std::unique_lock turn(set_->own_change(), std::try_to_lock);
    if (!turn) {
        question_.reset();
        lease_.release_place();
        turn.lock();
    }
    if (!set_->has_password(password)) {
        if (!lease_.has_place()) lease_.acquire_place();
        is_new_ = true;
        connect();
        result = bind_once(set_->password());
    }
    if (says_wrong(result)) {
        set_->note_refused(bind_failure(result), asked_at_, mark_, lease_.generation());
        pool_.remember_refusal(set_);
    }
    return result;
}

// A connection whose bind was not accepted is closed: its user is nobody now, or not known.
Result Attempts::bind_once(const Secret& password) {
    // While the question was somebody else's.
    if (server_->generation() != lease_.connection().server_generation) {
        lease_.close();
        if (!server_->is_up())
            return {result_code::server_down, "The server has failed meanwhile.", {}, {}, false};
        is_new_ = true;
        connect();
    }
    asked_at_ = pool_.clock().now();
    mark_ = pool_.writes().mark(set_->user_key());
    Result result = lease_.connection().session.bind(set_->user(), password);
    if (result.ok()) {
        note_answer(server_, pool_.clock().now() - asked_at_);
        set_->note_accepted(asked_at_, mark_, lease_.generation());
        return result;
    }
    if (result.connection_failed() || result.is_unavailable()) note_failure(server_, result);
    lease_.close();
    return result;
}

void Attempts::note_failure(const ServerRef& server, const Result& result) {
    pool_.servers().note_failure(*server, reason_of(result));
}

// A server that takes half of what it may is not waited for again while another one is up.
void Attempts::note_answer(const ServerRef& server, Clock::time_point::duration took) {
    server->note_answer(duration_cast<microseconds>(took));
    if (server->is_probed() && took > limits_.answer / 2)
        pool_.servers().note_failure(
            *server, "An answer took " +
                         std::to_string(duration_cast<std::chrono::milliseconds>(took).count()) +
                         " ms.");
}

bool Attempts::again(const Result& result) {
    const ServerRef before = server_;
    if (!decide(result)) return false;
    if (result.code != result_code::referral) {
        before->figures()->retries.add();
        if (server_ != before) before->figures()->failovers.add();
    }
    return true;
}

bool Attempts::decide(const Result& result) {
    const ServerRef server = server_;
    const PoolSettings& settings = lease_.settings();
    const bool is_repeatable = operation_.effect == Effect::none;
    const auto go_on = [&](ServerRef next) {
        server_ = std::move(next);
        return server_ != nullptr;
    };

    const auto note_write = [&] {
        if (operation_.effect == Effect::change && entry_)
            set_->group().note_write(*entry_, server, pool_.clock().now() + settings.replica_lag);
    };

    if (result.connection_failed()) {
        lease_.close();
        if (result.may_be_done()) note_write();
        if (result.code == result_code::decoding_error) return false;
        note_failure(server, result);
        if (!is_repeatable && result.sent) return false;
        // A connection that was idle may have been closed by a server that is well.
        const bool may_be_well = was_lost(result) && !is_new_;
        if (!may_be_well) tried_.push_back(server);
        return go_on(may_be_well ? set_->group().choose(settings.failback_after, tried_)
                                 : set_->group().choose_up(settings.failback_after, tried_));
    }
    if (result.is_unavailable()) {
        note_failure(server, result);
        lease_.close();
        tried_.push_back(server);
        return is_repeatable && go_on(set_->group().choose_up(settings.failback_after, tried_));
    }
    const auto took = pool_.clock().now() - asked_at_;
    const bool is_search = !entry_;
    if (is_search)
        server->note_answer(duration_cast<microseconds>(took));
    else
        note_answer(server, took);
    if (result.code == result_code::referral && operation_.effect == Effect::change) {
        tried_.push_back(server);
        const ServerRef master = set_->group().referred_to(result.referrals);
        const bool is_new_to_it = master && std::ranges::find(tried_, master) == tried_.end();
        if (is_new_to_it) {
            lease_.close();
            return go_on(master);
        }
    }
    if (result.ok()) note_write();
    lease_.release();
    return false;
}

}  // namespace orvo::directory::ldap
