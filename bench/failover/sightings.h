#pragma once

// What the proxies saw go by: which server got which requests, and how often.

#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvo::failover {

using Clock = std::chrono::steady_clock;

// A mark that makes one attempt to do something recognisable wherever it goes by. Different for
// each attempt of this process.
std::uint64_t new_mark();
// As it stands in a value, a name or a password: "try-0000000123".
std::string text_of(std::uint64_t mark);
// The mark in a text, if there is one.
std::optional<std::uint64_t> mark_in(std::string_view text);

inline constexpr int preferred = 0, other = 1;

// Any thread.
class Sightings {
public:
    // A request of a client to a server. `operation` is the request's tag in the protocol.
    void saw(int server, char operation, std::string_view content);

    // How many binds, and how many writes, with a mark were sent more than once, to whichever
    // server.
    struct Repeated {
        int binds = 0;
        int writes = 0;
    };
    Repeated repeated() const;
    // The server to which the change or creation with this mark was sent last.
    std::optional<int> server_of_write(std::uint64_t mark) const;

    // Seconds from `healed` until the preferred server got its first request that serves a caller,
    // and until the begin of the first whole second in which it got most of them. A request that
    // serves a caller reads an entry or writes; a look at the root entry, and a bind alone, may be
    // a probe.
    struct Return {
        std::optional<double> first;
        std::optional<double> most;
    };
    Return preferred_serves_after(Clock::time_point healed) const;

private:
    struct Seen {
        int times = 0;
        int server = preferred;
    };
    // By mark and operation.
    using Key = std::uint64_t;
    static Key key_of(std::uint64_t mark, char operation) {
        return mark << 8 | static_cast<unsigned char>(operation);
    }

    mutable std::mutex mutex_;
    std::unordered_map<Key, Seen> marked_;
    std::array<std::vector<Clock::time_point>, 2> served_;
};

// Cuts what one client sends into requests, and reports each to `sightings`.
class RequestReader {
public:
    RequestReader(Sightings& sightings, int server) : sightings_(sightings), server_(server) {}
    void take(std::string_view bytes);

private:
    Sightings& sightings_;
    const int server_;
    std::string pending_;
};

}  // namespace orvo::failover
