#include "suite/throttle/suite_throttle.h"

#include <exception>
#include <utility>

#include "platform/objects/recordset/builder.h"
#include "suite/audit/calling_page.h"
#include "suite/directory/policy/password_check.h"

namespace orvo::throttle {
namespace {

Outcome outcome_of(std::int32_t result) {
    return result >= 0 || result == directory::password_check::expired ? Outcome::right
                                                                       : Outcome::wrong;
}

}  // namespace

SuiteThrottle::~SuiteThrottle() {
    try {
        settle(Outcome::none);
    } catch (const std::exception&) {
        // What is under way counts as over before long.
    }
}

const Settings& SuiteThrottle::settings() {
    if (!settings_) settings_ = settings_of_site();
    return *settings_;
}

Boolean SuiteThrottle::IsOn() { return settings().is_on; }

Boolean SuiteThrottle::Admit(const Text& user) {
    if (!settings().is_on) return true;
    settle(Outcome::none);
    ticket_ =
        process_.gate(settings())
            .admit({user_key(user), address_key(audit::address_of_calling_page())}, settings());
    return ticket_.has_value();
}

Boolean SuiteThrottle::AdmitFound(const Text& user) {
    if (!settings().is_on) return true;
    return ticket_ && process_.gate(settings()).admit_found(*ticket_, user_key(user), settings());
}

void SuiteThrottle::Settle(std::int32_t result) { settle(outcome_of(result)); }

void SuiteThrottle::settle(Outcome outcome) {
    if (const auto ticket = std::exchange(ticket_, std::nullopt))
        process_.gate(settings()).settle(*ticket, outcome, settings());
}

Boolean SuiteThrottle::Clear(const Text& user) {
    return process_.counters(settings()).clear(user_key(user));
}

Boolean SuiteThrottle::ClearAddress(const Text& address) {
    return process_.counters(settings()).clear_address(address_key(address));
}

Object SuiteThrottle::State(const Text& user, const Text& address) {
    RecordSetBuilder builder({u"Budget", u"Wrong", u"Most", u"Seconds", u"IsAsked"});
    for (const CountedBudget& budget :
         process_.counters(settings())
             .state({user_key(user), address_key(address)}, limits_of(settings())))
        builder.add({Text(budget.name()), std::int32_t{budget.wrong}, std::int32_t{budget.most},
                     static_cast<std::int32_t>(
                         std::chrono::ceil<std::chrono::seconds>(budget.free_in).count()),
                     budget.is_asked});
    return builder.open().object();
}

Object SuiteThrottle::Figures() {
    const Gate::Figures figures = process_.gate(settings()).figures();
    RecordSetBuilder builder({u"Admitted", u"Delayed", u"Refused", u"Wrong", u"Waiting"});
    builder.add({static_cast<double>(figures.admitted), static_cast<double>(figures.delayed),
                 static_cast<double>(figures.refused), static_cast<double>(figures.wrong),
                 static_cast<double>(figures.waiting)});
    return builder.open().object();
}

}  // namespace orvo::throttle
