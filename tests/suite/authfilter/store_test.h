#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>

#include "suite/authfilter/filter_store.h"

namespace orvo::authfilter {

struct StoreKind {
    const char* name;
    // A store of the test's own. `passed`: by how much its clock has gone on beside the real time.
    std::function<std::unique_ptr<Store>(std::function<std::chrono::milliseconds()> passed)> make;

    friend void PrintTo(const StoreKind& kind, std::ostream* out) { *out << kind.name; }
};

// What all stores do, whatever they keep it in; each kind is instantiated where it can be made.
class EveryStore : public testing::TestWithParam<StoreKind> {
protected:
    void pass(std::chrono::milliseconds time) { passed_ += time; }
    void begin(const Text& guid, const Text& user, bool only_one = false,
               std::chrono::minutes timeout = std::chrono::minutes(10)) {
        store_->begin({guid, user, {2, 7}, only_one, timeout});
    }
    void save(const Text& guid, TextView password) {
        Record record;
        record.user_name = u"smith";
        record.password = Secret(password);
        store_->save(guid, record);
    }
    void save_account(const Text& guid, const Text& user, const Text& path) {
        Record record;
        record.user_name = user;
        record.account_path = path;
        store_->save(guid, record);
    }
    void log_in(const Text& guid, const Text& user) {
        save_account(guid, user, u"cn=" + user + u",o=Shop");
        begin(guid, user);
    }
    bool is_live(const Text& guid) { return store_->ask(guid, 2); }

    std::chrono::milliseconds passed_{0};
    const std::unique_ptr<Store> store_ = GetParam().make([this] { return passed_; });
};

}  // namespace orvo::authfilter
