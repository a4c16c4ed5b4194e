#pragma once

#include <optional>
#include <string>

#include "platform/values/secret.h"
#include "suite/directory/names/entry_key.h"
#include "suite/directory/settings/clock.h"

namespace orvo::directory {

// The password that this thread's last check found right. Users who change their password prove the
// old one by a check, and at once the new one is written, through an entry that may be bound as
// somebody else: between these two the contract has no place for the old one. So it is kept from
// the check to what the thread does next with an entry: writing its password, which takes it, or
// binding, which forgets it. It is never kept for longer than a few seconds of use.
class ProvenPassword {
public:
    static void note(const std::string& server_key, const std::string& user, const Secret& password,
                     Clock::time_point now);
    static void forget();
    // The password of this entry, once; nothing where another was checked, or not just now.
    static std::optional<Secret> take(const std::string& server_key, const EntryKey& user,
                                      Clock::time_point now);
};

}  // namespace orvo::directory
