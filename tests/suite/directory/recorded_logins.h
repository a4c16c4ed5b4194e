#pragma once

// In the place of the authorization filter's logins: tests read which of them a provider has ended.

#include <string>
#include <utility>
#include <vector>

#include "platform/interfaces/hosted.h"
#include "platform/module/local_class.h"
#include "platform/values/failure.h"

namespace orvo {
namespace directory {

class RecordedLogins {
public:
    static inline std::vector<std::string> ended;  // "cn=djansen,ou=Users,o=Shop but <GUID>"
    static inline std::string unreachable;         // the account whose logins cannot be ended

    std::int32_t EndAllOf(const Text& account, const Text& except) {
        if (to_utf8(account) == unreachable) throw Failure(4711, u"Store", u"The store is away.");
        ended.push_back(to_utf8(account) + (except.empty() ? "" : " but " + to_utf8(except)));
        return 1;
    }
};

}  // namespace directory

template <>
inline constexpr auto table_of<directory::RecordedLogins> = describe<directory::RecordedLogins>(
    "IRecordedLogins", "5e0f4b0a-6f3e-4b43-9a57-0f6f2a1d7c01",
    method<&directory::RecordedLogins::EndAllOf>("EndAllOf", "account", optional("except")));
template <>
inline constexpr auto class_of<directory::RecordedLogins> =
    describe_class<directory::RecordedLogins>("TavikAuthFilter.Logins",
                                              "5e0f4b0a-6f3e-4b43-9a57-0f6f2a1d7c02");

namespace directory {

// They are this process's filter as long as this lives.
class LoginsOnRecord {
public:
    LoginsOnRecord() {
        RecordedLogins::ended.clear();
        RecordedLogins::unreachable.clear();
    }
    // Which were ended since it was last asked.
    std::vector<std::string> ended() { return std::exchange(RecordedLogins::ended, {}); }
    void fail_for(const std::string& account) { RecordedLogins::unreachable = account; }

private:
    const LocalClass class_ = local_class<RecordedLogins>();
};

}  // namespace directory
}  // namespace orvo
