#pragma once

#include "host/web/sessions/application_lock.h"

namespace orvo::web {

// In the memory of this process.
class MemoryApplication : public ApplicationState {
public:
    Reach reach() const override { return Reach::process; }
    NamedValues snapshot() override;
    Variant get(TextView name) override;
    void put_own(TextView name, const Variant& value) override;

private:
    void lock(const Holder& holder) override { lock_.take(holder); }
    void unlock(const Holder& holder) override { lock_.release(holder); }
    void put(const Holder& holder, TextView name, const Variant& value) override;
    void remove(const Holder& holder, TextView name) override;
    void remove_all(const Holder& holder) override;

    ApplicationLock lock_;
    NamedValues values_;  // under its guard
};

}  // namespace orvo::web
