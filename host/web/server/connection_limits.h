#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace orvo::web {

// Counts connections, in all and by address. One thread.
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
    std::size_t count() const { return count_; }
    // Notices that a connection was refused for another reason.
    void note_refusal(const std::string& reason);

private:
    bool try_count(const std::string& address);
    void uncount(const std::string& address);

    const std::size_t most_;
    const std::size_t most_of_one_address_;
    const std::function<void(const std::string&)> notice_;
    const std::function<Clock::time_point()> now_;
    std::size_t count_ = 0;
    std::map<std::string, std::size_t> of_address_;
    std::size_t refused_ = 0;
    std::optional<Clock::time_point> noticed_;
};

}  // namespace orvo::web
