#include "host/web/pages/waiting_pages.h"

#include <algorithm>

namespace orvo::web {

bool WaitingPages::contains(const std::string& address) const {
    const std::lock_guard guard(lock_);
    return addresses_.contains(address);
}

void WaitingPages::note(std::string address) {
    const std::lock_guard guard(lock_);
    if (addresses_.size() >= most_ && !addresses_.contains(address))
        addresses_.erase(addresses_.begin());
    addresses_.insert(std::move(address));
}

bool may_wait_for_directory(TextView progid) {
    static constexpr TextView of_others[] = {u"ADODB.", u"Scripting.", u"TavikAuthFilter.",
                                             u"Quendra."};
    return std::ranges::none_of(of_others, [&](TextView prefix) {
        return equal_ignoring_case(progid.substr(0, prefix.size()), prefix);
    });
}

}  // namespace orvo::web
