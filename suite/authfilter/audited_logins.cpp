#include "suite/authfilter/audited_logins.h"

#include "platform/interfaces/call.h"
#include "suite/audit/audit_call.h"
#include "suite/counters/count_event.h"

namespace orvo::authfilter {
namespace {

void record(const Text& event, const Text& result, const Text& user, const Text& by,
            const Text& what) {
    counters::count_event(counters::filter, event);
    if (const Ref<Audit> audit = audit::try_audit())
        call<&Audit::Record>(audit, event, result, user, by, Text(), what);
}

}  // namespace

void record_login(const Text& user, const std::vector<std::int32_t>& applications) {
    Text what;
    for (const std::int32_t application : applications)
        what += (what.empty() ? u"application " : u", ") + decimal(application);
    record(u"login", Text(audit::done), user, {}, what);
}

void record_refusal(const Text& user, std::int32_t application) {
    record(u"refusal", u"refused", user, {}, u"application " + decimal(application));
}

void record_logout(const Text& user, const Text& by) {
    record(u"logout", Text(audit::done), user, by, {});
}

void record_logouts(const Text& user, const Text& by, std::size_t count) {
    record(u"logout", Text(audit::done), user, by,
           count == 1 ? u"1 login" : decimal(static_cast<long long>(count)) + u" logins");
}

}  // namespace orvo::authfilter
