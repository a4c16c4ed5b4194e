#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/values/metric.h"

namespace orvo::web {

// Counts connections, in all and by address. One thread, but for the figures.
class ConnectionLimits {
public:
    using Clock = std::chrono::steady_clock;

    // notice: told how many connections were refused and why, for the first of them and then not
    // more often than every ten seconds.
    ConnectionLimits(std::size_t most, std::size_t most_of_one_address,
                     std::function<void(const std::string&)> notice,
                     std::function<Clock::time_point()> now = Clock::now);

    // One that is let in counts until leave(), in all and for an address; without one in all alone.
    // False: it is not let in.
    bool try_enter(const std::string& address);
    void leave(const std::string& address);
    // Counts one that is in for another address from now on; false: that has as many as it may, and
    // nothing has changed.
    bool try_change(std::string& address, const std::string& to);
    // Notices that a connection was refused for another reason.
    void note_refusal(const std::string& reason);

    // Any thread: how many there are, and how many were refused since the beginning, because there
    // were too many, or too many of one address (and requests, where a proxy sends them).
    std::size_t count() const { return static_cast<std::size_t>(count_.value()); }
    std::uint64_t refused_in_all() const { return refused_in_all_.value(); }
    std::uint64_t refused_of_one_address() const { return refused_of_one_address_.value(); }

private:
    bool try_count(const std::string& address);
    void uncount(const std::string& address);

    const std::size_t most_;
    const std::size_t most_of_one_address_;
    const std::function<void(const std::string&)> notice_;
    const std::function<Clock::time_point()> now_;
    Gauge count_;
    Counter refused_in_all_;
    Counter refused_of_one_address_;
    std::map<std::string, std::size_t> of_address_;
    std::size_t refused_ = 0;  // since the last notice
    std::optional<Clock::time_point> noticed_;
};

}  // namespace orvo::web
