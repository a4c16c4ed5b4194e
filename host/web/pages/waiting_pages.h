#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/values/text.h"

namespace orvo::web {

// A set of requests by method and address, as it was asked for, without a query: a login page may
// need the directory for a form alone. Any thread; nobody waits here.
class RequestSet {
public:
    explicit RequestSet(std::size_t most = 10'000) : most_(most) {}

    bool contains(std::string_view method, std::string_view address) const;
    // Beyond the bound another one is forgotten.
    void note(std::string_view method, std::string_view address);

private:
    const std::size_t most_;
    mutable std::mutex lock_;
    std::unordered_set<std::string> requests_;
};

// Whether an object of this class may wait for the directory: any but those of the platform and of
// the suite that are known not to.
bool may_wait_for_directory(TextView progid);

}  // namespace orvo::web
