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

void end_all_of(const std::string& account, const Text& except) {
    if (const Object filter = try_filter())
        late::call(filter, u"EndAllOf", {from_utf8(account), except});
}

// Why some may go on: the first failure.
std::optional<Failure> try_end(const EndedLogins& ended) {
    if (!ended.may_be_done || ended.accounts.empty()) return {};
    const Text own = ended.spares_own ? audit::login_of_calling_page() : Text();
    std::optional<Failure> first;
    for (const std::string& account : ended.accounts) try {
            end_all_of(account, own);
        } catch (const Failure& failure) {
            if (!first) first = failure;
        }
    return first;
}

[[noreturn]] void raise(const Failure& failure, const Text& description) {
    throw Failure(failure.number, failure.source, description);
}

}  // namespace

void audited_account_change(const AuditedChange& change,
                            const std::function<void(EndedLogins&)>& make) {
    EndedLogins ended;
    std::optional<Failure> unended;
    audited_change(change, [&] {
        try {
            make(ended);
        } catch (const Failure& failure) {
            unended = try_end(ended);
            if (!unended) throw;
            raise(failure,
                  failure.description + u" The user's logins may go on: " + unended->description);
        }
        unended = try_end(ended);
    });
    if (unended)
        raise(*unended, u"The change has been made, but the user's logins may go on: " +
                            unended->description);
}

}  // namespace orvo::directory
