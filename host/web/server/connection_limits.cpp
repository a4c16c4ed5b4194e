#include "host/web/server/connection_limits.h"

#include <utility>

namespace orvo::web {

ConnectionLimits::ConnectionLimits(std::size_t most, std::size_t most_of_one_address,
                                   std::function<void(const std::string&)> notice,
                                   std::function<Clock::time_point()> now)
    : most_(most),
      most_of_one_address_(most_of_one_address),
      notice_(std::move(notice)),
      now_(std::move(now)) {}

bool ConnectionLimits::try_enter(const std::string& address) {
    if (count() >= most_) {
        refused_in_all_.add();
        note_refusal("there are " + std::to_string(most_));
        return false;
    }
    if (!try_count(address)) return false;
    count_.add();
    return true;
}

void ConnectionLimits::leave(const std::string& address) {
    count_.add(-1);
    uncount(address);
}

bool ConnectionLimits::try_change(std::string& address, const std::string& to) {
    if (address == to) return true;
    if (!try_count(to)) return false;
    uncount(std::exchange(address, to));
    return true;
}

bool ConnectionLimits::try_count(const std::string& address) {
    if (address.empty()) return true;
    std::size_t& of_this = of_address_[address];
    if (of_this >= most_of_one_address_) {
        refused_of_one_address_.add();
        note_refusal(address + " has " + std::to_string(most_of_one_address_));
        return false;
    }
    ++of_this;
    return true;
}

void ConnectionLimits::uncount(const std::string& address) {
    const auto found = of_address_.find(address);
    if (found != of_address_.end() && --found->second == 0) of_address_.erase(found);
}

void ConnectionLimits::note_refusal(const std::string& reason) {
    ++refused_;
    const auto now = now_();
    if (noticed_ && now - *noticed_ < std::chrono::seconds(10)) return;
    notice_(
        std::to_string(std::exchange(refused_, 0)) +
        (noticed_ ? " connections refused since the last such line: " : " connection refused: ") +
        reason);
    noticed_ = now;
}

}  // namespace orvo::web
