#include "suite/directory/ldap/wire/session.h"

#include <utility>

#include "suite/directory/ldap/wire/failures.h"
#include "suite/directory/ldap/wire/unicode_password.h"

namespace orvo::directory::ldap {
namespace {

std::string reason_of(const ServerHost& host, const Result& why) {
    return "'" + host.url() + "'" + (why.message.empty() ? "" : ": " + why.message);
}

}  // namespace

void check(const Result& result) {
    if (!result.ok()) raise_code(result.code, result.message, result.nearest_entry);
}

Session Session::connect(const ServerHost& host, const Limits& limits) {
    Result why;
    if (std::optional<Session> session = try_connect(host, limits, why)) return std::move(*session);
    raise_code(why.code, reason_of(host, why));
}

Session Session::connect(const ServerAddress& server, const Limits& limits) {
    std::string reasons;
    Result why;
    for (const ServerHost& host : server.hosts()) {
        if (std::optional<Session> session = try_connect(host, limits, why))
            return std::move(*session);
        reasons += (reasons.empty() ? "" : " ") + reason_of(host, why);
    }
    raise_code(why.code, reasons);
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
    Result result = modify(name, changes);
    for (Replacement& change : changes)
        overwrite(change.values.front().data(), change.values.front().size());
    return result;
}

}  // namespace orvo::directory::ldap
