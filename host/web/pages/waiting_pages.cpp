#include "host/web/pages/waiting_pages.h"

#include <algorithm>

namespace orvo::web {

namespace {

std::string key_of(std::string_view method, std::string_view address) {
    return std::string(method) + ' ' + std::string(address);
}

}  // namespace

std::optional<bool> WaitingPages::waits(std::string_view method, std::string_view address) const {
    const std::string key = key_of(method, address);
    const std::lock_guard guard(lock_);
    const auto seen = seen_.find(key);
    return seen == seen_.end() ? std::nullopt : std::optional(seen->second);
}

void WaitingPages::note(std::string_view method, std::string_view address, bool waits) {
    std::string key = key_of(method, address);
    const std::lock_guard guard(lock_);
    if (seen_.size() >= most_ && !seen_.contains(key)) seen_.erase(seen_.begin());
    seen_[std::move(key)] |= waits;
}

bool may_wait_for_directory(TextView progid) {
    static constexpr TextView of_others[] = {u"ADODB.", u"Scripting.", u"TavikAuthFilter.",
                                             u"Quendra."};
    return std::ranges::none_of(of_others, [&](TextView prefix) {
        return equal_ignoring_case(progid.substr(0, prefix.size()), prefix);
    });
}

}  // namespace orvo::web
