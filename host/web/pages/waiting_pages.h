#pragma once

#include <mutex>
#include <string>
#include <unordered_set>

#include "platform/values/text.h"

namespace orvo::web {

// The addresses of pages that have been seen to wait for the directory, as they were asked for,
// without a query. Any thread; nobody waits here.
class WaitingPages {
public:
    explicit WaitingPages(std::size_t most = 10'000) : most_(most) {}

    bool contains(const std::string& address) const;
    // Beyond the bound another one is forgotten: its page is seen again.
    void note(std::string address);

private:
    const std::size_t most_;
    mutable std::mutex lock_;
    std::unordered_set<std::string> addresses_;
};

// Whether an object of this class may wait for the directory: any but those of the platform and of
// the suite that are known not to.
bool may_wait_for_directory(TextView progid);

}  // namespace orvo::web
