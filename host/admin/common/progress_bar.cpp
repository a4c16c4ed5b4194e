#include "host/admin/common/progress_bar.h"

#include <algorithm>
#include <utility>

#include "host/admin/common/text_width.h"

namespace orvo::admin {

ProgressBar::ProgressBar(std::ostream& terminal, std::string what, std::size_t columns)
    : terminal_(terminal), what_(std::move(what)), columns_(columns) {}

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
    if (all > 0) line += drawn(std::min<std::uint64_t>(done * 100 / all, 100), more);
    if (!more.empty()) line += ", " + more;
    // A terminal goes on in its next line behind its last column.
    if (columns_ > 0) line = cut_to(line, columns_ - 1);
    const std::size_t width = width_of(line);
    if (width < width_) line.append(width_ - width, ' ');
    terminal_ << '\r' << line << std::flush;
    width_ = width;
}

// The bar itself gives way first.
std::string ProgressBar::drawn(std::uint64_t percent, const std::string& more) const {
    constexpr std::size_t widest = 30, narrowest = 5;
    const std::string number = " " + std::to_string(percent) + " %";
    const std::size_t others = width_of(what_ + number + " [], " + more) + 1;
    const std::size_t steps =
        columns_ == 0 ? widest : std::min(widest, columns_ - std::min(columns_, others));
    if (steps < narrowest) return number;
    const std::size_t filled = percent * steps / 100;
    return " [" + std::string(filled, '#') + std::string(steps - filled, '-') + "]" + number;
}

}  // namespace orvo::admin
