#pragma once

#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "bench/fleet/ledger.h"
#include "tests/support/ldap_probe.h"

namespace orvo::fleet {

// A buyer of the shop, and every value that was given to the telephone number, in order. The first
// one stood there from the beginning. Belongs to the browser that has taken the user.
class ShopUser {
public:
    struct Attempt {
        std::string value;
        bool is_acknowledged;
        Clock::time_point begin;
        Clock::time_point end;
    };

    ShopUser(std::string name, std::string value);

    const std::string& name() const { return name_; }
    std::string next_value() const;
    void wrote(Attempt attempt) { attempts_.push_back(std::move(attempt)); }
    const std::vector<Attempt>& attempts() const { return attempts_; }

    // The last value that was acknowledged. Any that was tried later may be there, too.
    const Attempt& last_acknowledged() const;
    bool may_be(const std::string& value) const;
    // Null for a value that was never given.
    const Attempt* attempt_with(const std::string& value) const;

private:
    std::string name_;
    std::vector<Attempt> attempts_;
};

// Any thread.
class Users {
public:
    // Buyers of the sample shop who may use application 1, as they are in this directory.
    explicit Users(LdapProbe& directory);

    // Nobody else has the user meanwhile.
    ShopUser& take(std::minstd_rand& random);
    void give_back(ShopUser& user);

    // When nobody has any.
    const std::vector<ShopUser>& all() const { return users_; }

private:
    std::vector<ShopUser> users_;
    std::mutex mutex_;
    std::vector<ShopUser*> free_;
};

}  // namespace orvo::fleet
