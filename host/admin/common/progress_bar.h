#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>

namespace orvo::admin {

// One line of a terminal that tells how far something is: "Loading [#####-----] 50 %, 1200
// entries". The line is gone at the end of the object's life.
class ProgressBar {
public:
    using Clock = std::chrono::steady_clock;

    // `columns`: of the terminal, which the line is fitted into; 0: as wide as anything.
    ProgressBar(std::ostream& terminal, std::string what, std::size_t columns = 0);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Drawn ten times a second at most. `all` 0: nobody knows.
    void tell(std::uint64_t done, std::uint64_t all, const std::string& more,
              Clock::time_point now = Clock::now());
    // The line is free for something else, until it is drawn anew.
    void clear();

private:
    std::string drawn(std::uint64_t percent, const std::string& more) const;

    std::ostream& terminal_;
    std::string what_;
    const std::size_t columns_;
    std::size_t width_ = 0;  // of what stands there
    Clock::time_point next_{};
};

}  // namespace orvo::admin
