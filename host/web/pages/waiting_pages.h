#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/values/text.h"

namespace orvo::web {

// Which requests wait for the directory, as it was seen, by method and address, decoded and
// without its query: a login page may need the directory for a form alone. Any thread; nobody waits
// here.
class WaitingPages {
public:
    explicit WaitingPages(std::size_t most = 10'000) : most_(most) {}

    // Whether one of them has waited; none where none was seen.
    std::optional<bool> waits(std::string_view method, std::string_view address) const;
    // Beyond the bound another one is forgotten.
    void note(std::string_view method, std::string_view address, bool waits);

private:
    const std::size_t most_;
    mutable std::mutex lock_;
    std::unordered_map<std::string, bool> seen_;
};

// Whether an object of this class may wait for the directory: any but those of the platform and of
// the suite that are known not to.
bool may_wait_for_directory(TextView progid);

}  // namespace orvo::web
