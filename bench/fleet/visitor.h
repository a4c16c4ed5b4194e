#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "bench/fleet/ledger.h"
#include "bench/fleet/shop_page.h"
#include "bench/fleet/users.h"
#include "tests/host/web/browser.h"

namespace orvo::fleet {

// Where browsers find the shop.
struct ShopAddress {
    int port;                // of the balancer
    std::vector<int> nodes;  // of each node, past the balancer
};

// One browser after the other: somebody logs in, looks at three pages, changes something, looks
// again and logs out. What fails is tried again until it is had. One thread.
class Visitor {
public:
    // Nothing is tried any more once `is_over`.
    Visitor(const ShopAddress& shop, Users& users, unsigned seed, const std::atomic<bool>& is_over);
    void visit();
    // A pause as people make between two pages.
    void think();
    Ledger ledger() && { return std::move(ledger_); }

private:
    using Cookies = std::map<std::string, std::string>;
    // What stood in the way; empty where it was had.
    using Reason = std::string;

    bool wish(Aim aim, const std::function<Reason()>& attempt);
    void go_through_the_shop();

    Reason log_in();
    Reason look_at(const std::string& path);
    Reason look_at_account();  // keeps its form
    Reason change();
    Reason log_out();
    // With neither a login nor the right to one.
    void try_without_right();
    void try_without_permission();
    // Each node, about logins that have ended.
    void ask_after_end();

    ShopPage get(const std::string& path);
    ShopPage post(const std::string& path, const HttpFields& form);
    Reason refusal_of(const ShopPage& page);
    void judge_value(const std::string& value, Clock::time_point begin);
    void found(Breach breach, const std::string& sentence);

    const ShopAddress& shop_;
    Users& users_;
    const std::atomic<bool>& is_over_;
    std::minstd_rand random_;
    Ledger ledger_;
    std::vector<Cookies> ended_;  // of the last two logins

    // Of the visit that is going on.
    std::optional<web::Browser> browser_;
    ShopUser* user_ = nullptr;
    bool is_lost_ = false;                 // a guarded page has sent it to the login page
    bool may_be_out_ = false;              // a logout was sent
    std::optional<HttpFields> form_ = {};  // of the account, as it was shown last, not yet sent
};

}  // namespace orvo::fleet
