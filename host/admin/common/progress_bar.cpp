#include "host/admin/common/progress_bar.h"

#include <algorithm>
#include <utility>

namespace orvo::admin {

ProgressBar::ProgressBar(std::ostream& terminal, std::string what)
    : terminal_(terminal), what_(std::move(what)) {}

ProgressBar::~ProgressBar() { clear(); }

void ProgressBar::clear() {
    if (width_ > 0) terminal_ << '\r' << std::string(width_, ' ') << '\r' << std::flush;
    width_ = 0;
}

void ProgressBar::tell(std::uint64_t done, std::uint64_t all, const std::string& more,
                       Clock::time_point now) {
    using namespace std::chrono_literals;
    if (now < next_) return;
    next_ = now + 100ms;
    std::string line = what_;
    if (all > 0) {
        constexpr std::uint64_t steps = 30;
        const std::uint64_t percent = std::min<std::uint64_t>(done * 100 / all, 100);
        const std::size_t filled = percent * steps / 100;
        line += " [" + std::string(filled, '#') + std::string(steps - filled, '-') + "] " +
                std::to_string(percent) + " %";
    }
    if (!more.empty()) line += ", " + more;
    const std::size_t width = line.size();
    if (width < width_) line.append(width_ - width, ' ');
    terminal_ << '\r' << line << std::flush;
    width_ = width;
}

}  // namespace orvo::admin
