#pragma once

#include <atomic>
#include <mutex>

#include "host/web/sessions/application_lock.h"
#include "host/web/sessions/shared_store.h"
#include "suite/store/subscription.h"

namespace orvo::web {

// Shared by all machines of a site. Reads are answered from a copy, which is asked for anew when
// somebody writes, and after a second in any case; while the store is away, from the last one. Who
// has the application locked, and who writes, sees what everybody else has written.
//
// In the store: a hash <prefix>:application, of each value its place in the order and, sealed, its
// name and itself; <prefix>:application:state with the version ("v"), the number of places ("o")
// and the lock (shared_locks.h). Raises StoreAway where it has to reach the store and cannot.
class RedisApplication : public ApplicationState {
public:
    // copy_life: after which a copy is asked for anew, whether anybody tells of a change or not.
    explicit RedisApplication(SharedStore& store,
                              std::chrono::milliseconds copy_life = std::chrono::seconds(1));

    Reach reach() const override { return Reach::fleet; }
    NamedValues snapshot() override;
    Variant get(TextView name) override;
    void put_own(TextView name, const Variant& value) override;

private:
    struct Change {
        const char* what;
        std::string field = {};
        std::string sealed = {};
    };

    void lock(const Holder& holder) override;
    void unlock(const Holder& holder) override;
    void put(const Holder& holder, TextView name, const Variant& value) override;
    void remove(const Holder& holder, TextView name) override;
    void remove_all(const Holder& holder) override { change(holder, {"clear"}); }

    void lock_for_all(const Holder& holder, const std::string& token);
    void change(const Holder& holder, const Change& change);
    void need_not_own(TextView name);
    std::string field_of(TextView name) const;
    // With copy_lock_ held.
    void refresh();
    void read(const store::Reply::List& fields);

    SharedStore& store_;
    const std::chrono::milliseconds copy_life_;
    const std::string values_key_;
    const std::string state_key_;
    const std::string channel_;
    ApplicationLock lock_;  // among the requests of this process
    std::string token_;     // of the one that has it, once it has the store's, too; under its guard
    std::mutex copy_lock_;
    NamedValues own_;
    NamedValues copy_;
    bool has_copy_ = false;
    std::string version_;
    std::chrono::steady_clock::time_point good_until_{};
    std::atomic<bool> is_changed_ = true;  // since the copy was made
    store::Subscription changes_;
};

}  // namespace orvo::web
