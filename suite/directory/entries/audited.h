#pragma once

// What a provider tells the site's audit. Where the site asks for none the work is done, and that
// is all. Checks are counted besides (suite/counters).

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "suite/directory/entries/throttled.h"

namespace orvo::directory {

// A check of somebody's password, from `check`, which answers its number or raises: event "check"
// with "right", "wrong", "locked", "disabled", "expired", "too many failures", "throttled" or
// "failed (0x8007203A)". With Sync nobody hears of the answer before it is recorded: what cannot be
// recorded raises in its place.
std::int32_t audited_check(TextView server, TextView user,
                           const std::function<CheckAnswer()>& check);

// Records a bind (BindAs) that failed: event "bind" with "wrong" for credentials that the directory
// refuses, nothing for any other failure. What cannot be recorded is in the log.
void record_failed_bind(TextView server, TextView user, const Failure& failure) noexcept;

// A bind, from `bind`. One that succeeds is not recorded.
template <class Bind>
void audited_bind(TextView server, TextView user, Bind bind) {
    try {
        bind();
    } catch (const Failure& failure) {
        record_failed_bind(server, user, failure);
        throw;
    }
}

// A change of an entry, by the account that it is made with.
struct AuditedChange {
    TextView event;  // "create", "delete", "change", or "password" for a change of userPassword
    TextView server;
    std::string entry;
    std::string by;              // empty: nobody
    std::string attribute = {};  // that is changed
};

// Makes it, from `make`, which raises what it fails with: "done" or "failed (0x80072098)". With
// Sync a change that is made but cannot be recorded raises, and says that it is made.
void audited_change(const AuditedChange& change, const std::function<void()>& make);

// "password" for one that holds a password, otherwise "change".
TextView event_of_change(std::string_view attribute);

}  // namespace orvo::directory
