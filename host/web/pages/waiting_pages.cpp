#include "host/web/pages/waiting_pages.h"

#include <algorithm>

namespace orvo::web {

namespace {

std::string key_of(std::string_view method, std::string_view address) {
    return std::string(method) + ' ' + std::string(address);
}

}  // namespace

bool RequestSet::contains(std::string_view method, std::string_view address) const {
    const std::string key = key_of(method, address);
    const std::lock_guard guard(lock_);
    return requests_.contains(key);
}

void RequestSet::note(std::string_view method, std::string_view address) {
    std::string key = key_of(method, address);
    const std::lock_guard guard(lock_);
    if (requests_.size() >= most_ && !requests_.contains(key)) requests_.erase(requests_.begin());
    requests_.insert(std::move(key));
}

bool may_wait_for_directory(TextView progid) {
    static constexpr TextView of_others[] = {u"ADODB.", u"Scripting.", u"TavikAuthFilter.",
                                             u"Quendra."};
    return std::ranges::none_of(of_others, [&](TextView prefix) {
        return equal_ignoring_case(progid.substr(0, prefix.size()), prefix);
    });
}

}  // namespace orvo::web
