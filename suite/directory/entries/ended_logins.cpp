#include "suite/directory/entries/ended_logins.h"

#include <optional>

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "suite/audit/calling_page.h"

namespace orvo::directory {
namespace {

Object try_filter() {
    try {
        return create_object(u"TavikAuthFilter.Logins");
    } catch (const Failure& failure) {
        if (failure.number != runtime_error::cannot_create_object) throw;
        return {};
    }
}

// What is to be raised where they go on.
std::optional<Failure> try_end(const EndedLogins& ended) {
    if (ended.accounts.empty()) return {};
    try {
        const Object filter = try_filter();
        if (!filter) return {};
        const Text own = ended.spares_own ? audit::login_of_calling_page() : Text();
        for (const std::string& account : ended.accounts)
            late::call(filter, u"EndAllOf", {from_utf8(account), own});
        return {};
    } catch (const Failure& failure) {
        return Failure(failure.number, failure.source,
                       failure.description +
                           u" The change has been made all the same, but the user's logins go on.");
    }
}

}  // namespace

void audited_account_change(const AuditedChange& change, const std::function<EndedLogins()>& make) {
    std::optional<Failure> unended;
    audited_change(change, [&] { unended = try_end(make()); });
    if (unended) throw *unended;
}

}  // namespace orvo::directory
