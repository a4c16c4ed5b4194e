#include "suite/directory/entries/audited.h"

#include "platform/interfaces/call.h"
#include "suite/audit/audit_call.h"
#include "suite/counters/count_event.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/policy/password_check.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {
namespace {

Text result_of_check(const CheckAnswer& answer) {
    if (answer.is_throttled) return u"throttled";
    switch (answer.number) {
        case password_check::right:
            return u"right";
        case password_check::wrong:
            return u"wrong";
        case password_check::locked:
            return u"locked";
        case password_check::disabled:
            return u"disabled";
        case password_check::expired:
            return u"expired";
        case password_check::too_many_failures:
            return u"too many failures";
    }
    return decimal(answer.number);
}

// Does the work, and records a failure of it; the failure itself is what is told, also where that
// cannot be recorded: the log has the event then.
template <class Work, class Record>
auto done_or_recorded(Work work, Record record) {
    try {
        return work();
    } catch (const Failure& failure) {
        try {
            record(audit::failed(failure.number));
        } catch (const Failure&) {
        }
        throw;
    }
}

CheckAnswer counted(const std::function<CheckAnswer()>& check) {
    try {
        const CheckAnswer answer = check();
        counters::count_event(counters::logins, result_of_check(answer));
        return answer;
    } catch (const Failure&) {
        counters::count_event(counters::logins, u"failure");
        throw;
    }
}

}  // namespace

std::int32_t audited_check(TextView server, TextView user,
                           const std::function<CheckAnswer()>& given_check) {
    const auto check = [&] { return counted(given_check); };
    const Ref<Audit> audit = audit::try_audit();
    if (!audit) return check().number;
    const auto record = [&](const Text& result) {
        call<&Audit::Record>(audit, Text(u"check"), result, Text(user), Text(), Text(server),
                             Text());
    };
    const CheckAnswer answer = done_or_recorded(check, record);
    record(result_of_check(answer));
    return answer.number;
}

void record_failed_bind(TextView server, TextView user, const Failure& failure) noexcept {
    if (failure.number != number_of_code(result_code::invalid_credentials)) return;
    try {
        if (const Ref<Audit> audit = audit::try_audit())
            call<&Audit::Record>(audit, Text(u"bind"), result_of_check({password_check::wrong}),
                                 Text(user), Text(), Text(server), Text());
    } catch (const std::exception&) {  // the caller is told of the bind
    }
}

void audited_change(const AuditedChange& change, const std::function<void()>& make) {
    const Ref<Audit> audit = audit::try_audit();
    if (!audit) return make();
    const auto record = [&](const Text& result) {
        call<&Audit::Record>(audit, Text(change.event), result, from_utf8(change.entry),
                             from_utf8(change.by), Text(change.server),
                             from_utf8(change.attribute));
    };
    done_or_recorded(make, record);
    try {
        record(Text(audit::done));
    } catch (const Failure& failure) {
        throw Failure(failure.number, failure.source,
                      u"The change has been made, but is not recorded: " + failure.description);
    }
}

TextView event_of_change(std::string_view attribute) {
    return is_password(attribute) ? u"password" : u"change";
}

}  // namespace orvo::directory
