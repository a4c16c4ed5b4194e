#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "suite/directory/ldap/pool/connection_pool.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory::ldap {

// What a validator is opened with. What is behind the first two is found out at the first check.
struct CheckTarget {
    Text server;
    Text written_container;
    Text container;
    std::optional<DistinguishedName> container_name;
    ConnectionSetRef checks;
};

// The target used last: a site has one, which every check opens anew. Thread-safe.
class LastCheckTarget {
public:
    // Null where it is another one.
    std::shared_ptr<const CheckTarget> find(TextView server, TextView container) {
        const std::lock_guard lock(mutex_);
        const bool is_it =
            last_ && last_->server == server && last_->written_container == container;
        return is_it ? last_ : nullptr;
    }
    void keep(std::shared_ptr<const CheckTarget> target) {
        const std::lock_guard lock(mutex_);
        last_ = std::move(target);
    }

private:
    std::mutex mutex_;
    std::shared_ptr<const CheckTarget> last_;
};

}  // namespace orvo::directory::ldap
