#include "suite/directory/ldap/wire/session.h"

#include <utility>

#include "suite/directory/ldap/wire/library_client.h"
#include "suite/directory/ldap/wire/paged_results.h"
#include "suite/directory/ldap/wire/password_modify.h"
#include "suite/directory/ldap/wire/unicode_password.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

using detail::Outcome;
using detail::Received;
using std::chrono::milliseconds;

constexpr std::string_view who_am_i_oid = "1.3.6.1.4.1.4203.1.11.3";

using Take = std::function<void(EntryData&&)>;

// How long an answer may take, and the setting that says so.
struct TimeLimit {
    milliseconds time;
    const char* setting;

    std::string words() const { return std::to_string(time.count()) + " ms (" + setting + ")"; }
};

TimeLimit answer_limit(const Limits& limits) { return {limits.answer, "AnswerLimit"}; }

TimeLimit limit_of(const SearchRequest& request, const Limits& limits) {
    if (request.scope == Scope::base) return answer_limit(limits);
    return {limits.operation, "OperationLimit"};
}

TimeLimit connect_limit(const Limits& limits) {
    if (limits.answer < limits.connect) return answer_limit(limits);
    return {limits.connect, "ConnectLimit"};
}

}  // namespace

struct Session::Connection {
    std::unique_ptr<detail::LibraryClient> client;
    ServerHost host;
    Limits limits;
    bool is_lost = false;
    std::shared_ptr<OperationFigures> figures = {};

    // One request and its whole answer. `send` is given a place for the request's number.
    template <class Send>
    Outcome ask(OperationKind kind, const TimeLimit& limit, Send send,
                const SearchRequest& search = {}, const Take& take = {}) {
        Outcome outcome;
        if (is_lost) {
            outcome.result = {result_code::server_down, "The connection was lost before.", {}};
            outcome.result.sent = false;
            return outcome;
        }
        const std::optional<std::uint64_t> before = client->bytes_sent();
        const auto begin = std::chrono::steady_clock::now();
        const Deadline deadline(limit.time);
        int request = -1;
        outcome.result = send(request);
        if (outcome.result.ok()) receive(request, deadline, search, take, outcome);
        if (outcome.result.code == result_code::timeout)
            outcome.result.message =
                "'" + host.url() + "' gave no complete answer within " + limit.words() + ".";
        is_lost = outcome.result.connection_failed();
        if (is_lost && before) outcome.result.sent = client->bytes_sent() != before;
        if (figures)
            figures->note(kind, std::chrono::steady_clock::now() - begin,
                          is_lost || outcome.result.is_unavailable());
        return outcome;
    }

    template <class Send>
    Outcome ask_once(OperationKind kind, Send send) {
        return ask(kind, answer_limit(limits), send);
    }

private:
    void receive(int request, const Deadline& deadline, const SearchRequest& search,
                 const Take& take, Outcome& outcome) {
        EntryData entry;
        for (;;) {
            switch (client->receive(request, deadline, search.wanted, entry, outcome)) {
                case Received::entry:
                    if (take) take(std::move(entry));
                    break;
                case Received::nothing:
                    break;
                case Received::outcome:
                    return;
            }
        }
    }
};

void check(const Result& result) {
    if (!result.ok()) raise_code(result.code, result.message, result.nearest_entry);
}

Session::Session(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}
Session::Session(Session&&) noexcept = default;
Session& Session::operator=(Session&&) noexcept = default;
Session::~Session() = default;

std::optional<Session> Session::try_connect(const ServerHost& host, const Limits& limits,
                                            Result& why) {
    const TimeLimit limit = connect_limit(limits);
    if (auto client = detail::open_client(host, limits, Deadline(limit.time), why))
        return Session(std::make_unique<Connection>(std::move(client), host, limits));
    if (why.code == result_code::timeout) why.message += " within " + limit.words() + ".";
    return std::nullopt;
}

Session Session::connect(const ServerHost& host, const Limits& limits) {
    Result why;
    if (std::optional<Session> session = try_connect(host, limits, why)) return std::move(*session);
    raise_code(why.code, "'" + host.url() + "'" + (why.message.empty() ? "" : ": " + why.message));
}

bool Session::seems_open() const {
    return !connection_->is_lost && connection_->client->seems_open();
}

void Session::set_limits(const Limits& limits) { connection_->limits = limits; }

void Session::count_in(std::shared_ptr<OperationFigures> figures) {
    connection_->figures = std::move(figures);
}

BindResult Session::bind(const std::string& name, const Secret& password, Policy policy) {
    Outcome outcome = connection_->ask_once(OperationKind::bind, [&](int& request) {
        return connection_->client->send_bind(name, password, policy, request);
    });
    return {std::move(outcome.result), std::move(outcome.controls)};
}

ReadResult Session::read(const std::string& name, const std::vector<std::string>& attributes) {
    ReadResult result;
    SearchRequest request;
    request.base = name;
    request.attributes = attributes;
    bool found = false;
    static_cast<Result&>(result) = search(request, [&](EntryData&& entry) {
        result.entry = std::move(entry);
        found = true;
    });
    // An entry that may not be read is not there for its reader.
    if (result.ok() && !found) result.code = result_code::no_such_object;
    return result;
}

Result Session::change_unicode_password(const std::string& name, const Secret& new_password,
                                        const Secret& former_password) {
    std::vector<Replacement> changes;
    changes.reserve(2);
    const auto append = [&](Change kind, const Secret& password) {
        changes.push_back({unicode_password_attribute, {}, kind});
        changes.back().values.emplace_back(unicode_password(password).reveal());
    };
    if (former_password.empty()) {
        append(Change::replace, new_password);
    } else {
        append(Change::remove, former_password);
        append(Change::add, new_password);
    }
    Result result = modify(name, changes, OperationKind::password);
    for (Replacement& change : changes)
        overwrite(change.values.front().data(), change.values.front().size());
    return result;
}

SearchResult Session::search(const SearchRequest& search, const Take& take) {
    Outcome outcome = connection_->ask(
        search.scope == Scope::base ? OperationKind::read : OperationKind::search,
        limit_of(search, connection_->limits),
        [&](int& request) { return connection_->client->send_search(search, request); }, search,
        take);
    SearchResult result = paged(std::move(outcome.result), outcome.controls);
    connection_->is_lost |= result.connection_failed();
    return result;
}

Result Session::add(const std::string& name, std::span<const Attribute> attributes) {
    return connection_
        ->ask_once(
            OperationKind::add,
            [&](int& request) { return connection_->client->send_add(name, attributes, request); })
        .result;
}

Result Session::remove(const std::string& name) {
    return connection_
        ->ask_once(OperationKind::remove,
                   [&](int& request) { return connection_->client->send_remove(name, request); })
        .result;
}

UpdateResult Session::modify(const std::string& name, std::span<const Replacement> replacements) {
    return modify(name, replacements, OperationKind::modify);
}

UpdateResult Session::modify(const std::string& name, std::span<const Replacement> replacements,
                             OperationKind kind) {
    Outcome outcome = connection_->ask_once(kind, [&](int& request) {
        return connection_->client->send_modify(name, replacements, request);
    });
    return {std::move(outcome.result), std::move(outcome.controls)};
}

Result Session::change_password(const std::string& name, const Secret& new_password,
                                const Secret& former_password) {
    const Secret value = password_modify_request(name, new_password, former_password);
    return connection_
        ->ask_once(OperationKind::password,
                   [&](int& request) {
                       return connection_->client->send_extended(password_modify_oid, &value,
                                                                 request);
                   })
        .result;
}

void Session::set_controls(std::span<const Control> controls) {
    connection_->client->set_controls(controls);
}

std::string Session::certificate() const { return connection_->client->certificate(); }

WhoAmIResult Session::who_am_i() {
    Outcome outcome = connection_->ask_once(OperationKind::extended, [&](int& request) {
        return connection_->client->send_extended(who_am_i_oid, nullptr, request);
    });
    return {std::move(outcome.result), std::move(outcome.value)};
}

}  // namespace orvo::directory::ldap
