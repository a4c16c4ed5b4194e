#include "bench/fleet/users.h"

#include <algorithm>
#include <stdexcept>

namespace orvo::fleet {

ShopUser::ShopUser(std::string name, std::string value)
    : name_(std::move(name)), attempts_{{std::move(value), true, {}, {}}} {}

std::string ShopUser::next_value() const { return name_ + "-" + std::to_string(attempts_.size()); }

const ShopUser::Attempt& ShopUser::last_acknowledged() const {
    return *std::find_if(attempts_.rbegin(), attempts_.rend(),
                         [](const Attempt& one) { return one.is_acknowledged; });
}

bool ShopUser::may_be(const std::string& value) const {
    const auto last = attempts_.begin() + (&last_acknowledged() - attempts_.data());
    return std::any_of(last, attempts_.end(),
                       [&](const Attempt& one) { return one.value == value; });
}

const ShopUser::Attempt* ShopUser::attempt_with(const std::string& value) const {
    const auto found = std::find_if(attempts_.begin(), attempts_.end(),
                                    [&](const Attempt& one) { return one.value == value; });
    return found == attempts_.end() ? nullptr : &*found;
}

Users::Users(LdapProbe& directory) {
    // Of these profiles every user gets application 1.
    for (const std::string& dn : directory.find("ou=Users,o=Shop",
                                                "(&(OrvoUserType=1)(mail=*)(|(ProfileCN=Buyers)("
                                                "ProfileCN=Approvers))(!(OrvoApps=*)))")) {
        const std::string name = dn.substr(3, dn.find(',') - 3);
        if (name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") != std::string::npos)
            continue;
        const auto values = directory.values(dn, "PhoneNumber");
        users_.emplace_back(name, values.empty() ? "" : values.front());
    }
    for (ShopUser& user : users_) free_.push_back(&user);
}

ShopUser& Users::take(std::minstd_rand& random) {
    const std::lock_guard lock(mutex_);
    if (free_.empty()) throw std::runtime_error("more browsers than users");
    std::swap(free_[random() % free_.size()], free_.back());
    ShopUser& user = *free_.back();
    free_.pop_back();
    return user;
}

void Users::give_back(ShopUser& user) {
    const std::lock_guard lock(mutex_);
    free_.push_back(&user);
}

}  // namespace orvo::fleet
